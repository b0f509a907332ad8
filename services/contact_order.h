// The order of contact names in an address book.
#ifndef CMCFG_SERVICES_CONTACT_ORDER_H_
#define CMCFG_SERVICES_CONTACT_ORDER_H_

#include <string>

// True when `a`, rewritten, is greater than `b`, rewritten: an escaped '?'
// loses its backslash and any other '?' becomes '.', so under a descending
// order a '?' sorts after a concrete digit. Both arguments are rewritten in
// place; callers pass copies. Internal to the library.
bool __cmp_contact_name(std::string& a, std::string& b);

#endif  // CMCFG_SERVICES_CONTACT_ORDER_H_
