// Filling a contact's service set from the stored services.
#include "cmcfg/cm_agent.h"
#include "platform/extension/extension_manager.h"

namespace {

// Selector bits of the services.
const unsigned kClir = 0x001;
const unsigned kIncomingBlocking = 0x002;
const unsigned kOutgoingBlocking = 0x004;
const unsigned kDistRinging = 0x008;
const unsigned kHunting = 0x010;
const unsigned kManyRinging = 0x020;
const unsigned kForwardUnconditional = 0x040;
const unsigned kForwardNoAnswer = 0x080;
const unsigned kForwardBusy = 0x100;
const unsigned kIntercom = 0x200;

}  // namespace

int CMAgent::FillSupServiceSet(Extension* stored, SupServiceSet& set, int contactId,
                               unsigned int mask) {
  if (stored == nullptr) return 0;
  // The address book is decoded on demand; a caller may not have asked yet.
  stored->LoadProperty(kPropAddressPatterns);
  AddressPatternParams* patterns = stored->GetAddressPatternParams();
  if (patterns == nullptr || contactId < 0) return 0;
  AddressPatternBlock* block = patterns->GetBlock(static_cast<unsigned long>(contactId));
  SupServAccessor* accessor = patterns->GetSupServAccessor(block, false);
  if (accessor == nullptr) return 0;
  if (mask == gAllProperties) {
    accessor->LoadAll();
  } else {
    accessor->Load(mask);
  }
  // In the established order; the members do not depend on each other.
  if (mask & kClir) set.clir = accessor->clir;
  if (mask & kManyRinging) set.manyRinging = accessor->manyRinging;
  if (mask & kHunting) set.hunt = accessor->hunt;
  if (mask & kIncomingBlocking) set.incomingBlocking = accessor->incomingBlocking;
  if (mask & kOutgoingBlocking) set.outgoingBlocking = accessor->outgoingBlocking;
  if (mask & kDistRinging) set.distRinging = accessor->distRinging;
  if (mask & kIntercom) set.intercom = accessor->intercom;
  if (mask & kForwardUnconditional) set.forwardUnconditional = accessor->forwardUnconditional;
  if (mask & kForwardNoAnswer) set.forwardNoAnswer = accessor->forwardNoAnswer;
  if (mask & kForwardBusy) set.forwardBusy = accessor->forwardBusy;
  return 1;
}
