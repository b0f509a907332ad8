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
  InstanceRef<AuthorizedPhonesAccessor> phones(true);
  if (!phones) {
    CMCFG_TRACE(this, "GetAutologinDB: failed to load authorized phones accessor.\n");
    return false;
  }
  for (const AuthorizedPhoneBlock* block : phones->GetAllBlocks())
    if (block != nullptr) generalData.authorizedPhones.push_back(FromBlock(*block));
  return true;
}

bool CMAgent::SaveAutologinUser(AuthorizedPhonesData* user) {
  if (user == nullptr) return false;
  InstanceRef<AuthorizedPhonesAccessor> phones(true);
  if (!phones) {
    CMCFG_TRACE(this, "SaveAutologinUser: failed to load authorized phones accessor.\n");
    return false;
  }
  bool created = true;
  bool found = false;
  // The user is looked up in the file as it is now, under its lock, so a
  // user another writer saved meanwhile is updated, not added twice.
  const cfg::Status saved = phones->Update([&] {
    for (AuthorizedPhoneBlock* block : phones->GetAllBlocks()) {
      if (block != nullptr && SameUser(block->phoneAddress, block->phoneType, *user)) {
        block->extension = user->extension;
        block->userName = user->userName;
        block->loginTime = user->loginTime;
        phones->SaveBlock(block);
        found = true;
        return true;
      }
    }
    std::unique_ptr<AuthorizedPhoneBlock> block = phones->CreateBlock();
    if (!block) {
      created = false;
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
    return true;
  });
  if (!created) {
    CMCFG_TRACE(this, "SaveAutologinUser: failed to create new block\n");
    return false;
  }
  // Nothing was stored (the lock not had in time, the save failed): the
  // list keeps what the file holds.
  if (!saved.ok()) return false;
  bool listed = false;
  for (AuthorizedPhonesData& entry : generalData.authorizedPhones) {
    if (SameUser(entry.phoneAddress, entry.phoneType, *user)) {
      // The stored block takes the new user name; the list entries keep
      // theirs until the next load.
      entry.loginTime = user->loginTime;
      entry.extension = user->extension;
      listed = true;
    }
  }
  if (!found || !listed) generalData.authorizedPhones.push_back(*user);
  return true;
}
