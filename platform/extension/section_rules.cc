#include "platform/extension/section_rules.h"

#include "platform/extension/extension_rep.h"

namespace extdb {

SectionReading ReadingOf(std::string_view name) {
  static const cfg::KeyRules kExtensionRules = {cfg::RuleFor<std::string>("description")};
  SectionReading reading;
  if (name == kExtensionSection) {
    reading.keys = &kExtensionRules;
  } else if (const cfg::KeyRules* property = PropertySectionRules(name)) {
    reading.keys = property;
  } else if (const cfg::KeyRules* speedDial = SpeedDialRules(name, &reading.id)) {
    reading.keys = speedDial;
    reading.list = "speed dial";
  } else if (ContactId(name, &reading.id)) {
    reading.keys = &ContactRules();
    reading.list = "contact";
  } else {
    unsigned long contact = 0;  // its services are not a list of their own
    reading.keys = ServiceSectionRules(name, &contact);
  }
  return reading;
}

const cfg::SectionRules& SystemFileRules() {
  static const cfg::SectionRules kRules = {
      {kSystemSection, {cfg::RuleFor<std::string>(kSystemAttendantKey)}}};
  return kRules;
}

}  // namespace extdb
