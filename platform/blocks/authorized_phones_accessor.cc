#include "platform/blocks/authorized_phones_accessor.h"

#include "platform/blocks/accessor_instance.h"

void AuthorizedPhoneBlock::Read(const cfg::Section& section) {
  blocks::ReadKey(section, "phone_address", &phoneAddress);
  blocks::ReadKey(section, "extension", &extension);
  blocks::ReadKey(section, "phone_type", &phoneType);
  blocks::ReadKey(section, "line_count", &lineCount);
  blocks::ReadKey(section, "user_name", &userName);
  blocks::ReadKey(section, "permissions", &permissions);
  blocks::ReadKey(section, "login_time", &loginTime);
  name = phoneAddress;
}

void AuthorizedPhoneBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  blocks::WriteKey(doc, section, "phone_address", phoneAddress);
  blocks::WriteKey(doc, section, "extension", extension);
  blocks::WriteKey(doc, section, "phone_type", phoneType);
  blocks::WriteKey(doc, section, "line_count", lineCount);
  blocks::WriteKey(doc, section, "user_name", userName);
  blocks::WriteKey(doc, section, "permissions", permissions);
  blocks::WriteKey(doc, section, "login_time", loginTime);
}

template class SharedAccessor<AuthorizedPhonesAccessor>;
