// Auto-login users: the authorised phones, mirrored in the general data.
#include "agent/agent_log.h"
#include "cmcfg/cm_agent.h"
#include "platform/blocks/authorized_phones_accessor.h"

namespace {

AuthorizedPhonesData FromBlock(const AuthorizedPhoneBlock& block) {
  AuthorizedPhonesData user;
  user.phoneAddress = block.phoneAddress;
  user.extension = block.extension;
  user.phoneType = block.phoneType;
  user.lineCount = block.lineCount;
  user.userName = block.userName;
  user.permissions = block.permissions;
  user.loginTime = block.loginTime;
  return user;
}

bool SameUser(const std::string& address, int32_t type, const AuthorizedPhonesData& user) {
  return address == user.phoneAddress && type == user.phoneType;
}

}  // namespace

bool CMAgent::GetAutologinDB() {
  generalData.authorizedPhones.clear();
  AuthorizedPhonesAccessor* phones = AuthorizedPhonesAccessor::GetInstance(true);
  if (phones == nullptr) {
    CMCFG_TRACE(this, "GetAutologinDB: failed to load authorized phones accessor.\n");
    return false;
  }
  for (const AuthorizedPhoneBlock* block : phones->GetAllBlocks())
    if (block != nullptr) generalData.authorizedPhones.push_back(FromBlock(*block));
  AuthorizedPhonesAccessor::CloseInstance();
  return true;
}

bool CMAgent::SaveAutologinUser(AuthorizedPhonesData* user) {
  if (user == nullptr) return false;
  AuthorizedPhonesAccessor* phones = AuthorizedPhonesAccessor::GetInstance(true);
  if (phones == nullptr) {
    CMCFG_TRACE(this, "SaveAutologinUser: failed to load authorized phones accessor.\n");
    return false;
  }
  AuthorizedPhoneBlock* found = nullptr;
  for (AuthorizedPhoneBlock* block : phones->GetAllBlocks()) {
    if (block != nullptr && SameUser(block->phoneAddress, block->phoneType, *user)) {
      found = block;
      break;
    }
  }

  if (found != nullptr) {
    found->extension = user->extension;
    found->userName = user->userName;
    found->loginTime = user->loginTime;
    phones->SaveBlock(found);
    // The stored block takes the new user name; the list entries keep
    // theirs until the next load.
    for (AuthorizedPhonesData& entry : generalData.authorizedPhones) {
      if (SameUser(entry.phoneAddress, entry.phoneType, *user)) {
        entry.loginTime = user->loginTime;
        entry.extension = user->extension;
      }
    }
  } else {
    std::unique_ptr<AuthorizedPhoneBlock> block = phones->CreateBlock();
    if (!block) {
      CMCFG_TRACE(this, "SaveAutologinUser: failed to create new block\n");
      AuthorizedPhonesAccessor::CloseInstance();
      return false;
    }
    block->phoneAddress = user->phoneAddress;
    block->name = user->phoneAddress;
    block->extension = user->extension;
    block->phoneType = user->phoneType;
    block->lineCount = user->lineCount;
    block->userName = user->userName;
    block->permissions = user->permissions;
    block->loginTime = user->loginTime;
    phones->AddBlock(std::move(block));
    generalData.authorizedPhones.push_back(*user);
  }
  AuthorizedPhonesAccessor::CloseInstance();
  return true;
}
