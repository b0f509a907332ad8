#include "platform/extension/ch_attendant.h"

CHAttendant::CHAttendant() = default;
CHAttendant::~CHAttendant() = default;
