#ifndef CMCFG_PLATFORM_EXTENSION_SUP_SERV_ACCESSOR_H_
#define CMCFG_PLATFORM_EXTENSION_SUP_SERV_ACCESSOR_H_

#include <memory>

#include "platform/extension/ss_params.h"

class AddressPatternParams;

// The stored supplementary services of one contact.
class SupServAccessor {
 public:
  // Reads the services from the extension's file (all, or those of mask).
  bool LoadAll();
  bool Load(unsigned mask);
  // Writes the services of mask back to the extension's file: within
  // Extension::Update into its reading, otherwise as an Update of its own.
  // Only the keys whose values differ from the file's are written; other
  // contacts and services stay. False, nothing written, when the contact is
  // no longer in the file, the file cannot be written, or a value would
  // not read back as written (an added forward destination that fails
  // CheckDestination, a hunt target's or many-ringing number with a
  // comma); a refusal is reported through the store's reporter.
  bool Store(unsigned mask);

  SSClirParams clir;
  SSBlockCallParams incomingBlocking;
  SSBlockCallParams outgoingBlocking;
  SSDistRingingParams distRinging;
  SSHuntRingingParams hunt;
  SSManyRingingParams manyRinging;
  SSForwardParams forwardUnconditional;
  SSForwardParams forwardNoAnswer;
  SSForwardParams forwardBusy;
  SSIntercomParams intercom;

  struct Rep;  // the library's own

 private:
  friend class AddressPatternParams;
  friend struct std::default_delete<SupServAccessor>;
  SupServAccessor();
  ~SupServAccessor();
  std::unique_ptr<Rep> rep_;
};

#endif  // CMCFG_PLATFORM_EXTENSION_SUP_SERV_ACCESSOR_H_
