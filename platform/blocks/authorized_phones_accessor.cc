#include "platform/blocks/authorized_phones_accessor.h"

#include "platform/base/field_table.h"
#include "platform/blocks/accessor_instance.h"

namespace {

// The keys of a block's section: read, written and published from here.
const cfg::Field<AuthorizedPhoneBlock> kAuthorizedPhoneBlockFields[] = {
    {"phone_address", &AuthorizedPhoneBlock::phoneAddress},
    {"extension", &AuthorizedPhoneBlock::extension},
    {"phone_type", &AuthorizedPhoneBlock::phoneType},
    {"line_count", &AuthorizedPhoneBlock::lineCount},
    {"user_name", &AuthorizedPhoneBlock::userName},
    {"permissions", &AuthorizedPhoneBlock::permissions},
    {"login_time", &AuthorizedPhoneBlock::loginTime},
};

}  // namespace

void AuthorizedPhoneBlock::Read(const cfg::Section& section) {
  cfg::ReadFields(section, kAuthorizedPhoneBlockFields, this);
  name = phoneAddress;
}

void AuthorizedPhoneBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  cfg::WriteFields(*this, kAuthorizedPhoneBlockFields, &doc, &section);
}

cfg::KeyRules AuthorizedPhoneBlock::KeyRules() { return cfg::FieldRules(kAuthorizedPhoneBlockFields); }

template class SharedAccessor<AuthorizedPhonesAccessor>;
