// Wildcards in contact names and the grouping of an address book: by call
// type, plain numbers first, then the patterns from the most specific.
#include "services/contact_order.h"

#include <iterator>
#include <list>
#include <string>
#include <utility>

#include "cmcfg/cm_agent.h"

namespace {

void RewriteForOrder(std::string& name) {
  for (size_t i = 0; i < name.size(); ++i) {
    if (name[i] != '?') continue;
    if (i > 0 && name[i - 1] == '\\') {
      // The '?' moves back to i - 1; the character now at i (the one after
      // the '?') is stepped over by the loop, as the stored order expects.
      name.erase(i - 1, 1);
    } else {
      name[i] = '.';
    }
  }
}

}  // namespace

bool __cmp_contact_name(std::string& a, std::string& b) {
  RewriteForOrder(a);
  RewriteForOrder(b);
  return a.compare(b) > 0;
}

bool CMAgent::IsWildCardExist(const std::string& name) {
  for (size_t i = 0; i < name.size(); ++i) {
    if (name[i] != '?' && name[i] != '*') continue;
    if (i == 0 || name[i - 1] != '\\') return true;
  }
  return false;
}

void CMAgent::GroupAddressBook(std::list<std::pair<Contact, SupServiceSet>>& book) {
  std::list<AddressBookEntry> work;
  work.splice(work.end(), book);
  while (!work.empty()) {
    const CallType type = work.front().first.callType;
    std::list<AddressBookEntry> patterns;
    for (auto it = work.begin(); it != work.end();) {
      auto next = std::next(it);
      if (it->first.callType == type) {
        if (IsWildCardExist(it->first.name)) {
          patterns.splice(patterns.end(), work, it);
        } else {
          book.splice(book.end(), work, it);
        }
      }
      it = next;
    }
    // std::list::sort is a stable merge sort: patterns that compare equal
    // keep their order.
    patterns.sort([](const AddressBookEntry& x, const AddressBookEntry& y) {
      std::string a = x.first.name;
      std::string b = y.first.name;
      return __cmp_contact_name(a, b);
    });
    book.splice(book.end(), patterns);
  }
}
