#include <gtest/gtest.h>

#include "cmcfg/extension_data.h"
#include "cmcfg/usr_data.h"
#include "platform/extension/ext_params.h"
#include "platform/extension/extension_manager.h"

namespace {

TEST(UsrDataTest, RollbackReturnsToValuesBeforeFirstSubstitution) {
  UsrData user;
  user.sip.userName = "alice";
  user.sip.password = "secret";
  user.sip.host = "pbx";

  EXPECT_EQ(0, user.SubstituteSipData("alice", "secret"));
  EXPECT_EQ(nullptr, user.sipBackup);

  EXPECT_EQ(1, user.SubstituteSipData("bob", "pw1"));
  EXPECT_EQ(1, user.SubstituteSipData("carol", "pw2"));
  EXPECT_EQ("carol", user.sip.userName);
  EXPECT_EQ("pbx", user.sip.host);

  EXPECT_EQ(1, user.RollbackSipData());
  EXPECT_EQ("alice", user.sip.userName);
  EXPECT_EQ("secret", user.sip.password);
  EXPECT_EQ(nullptr, user.sipBackup);
  EXPECT_EQ(0, user.RollbackSipData());
}

TEST(UsrDataTest, CopiesOwnTheirBackup) {
  UsrData source;
  source.name = "101";
  source.SubstituteSipData("temp", "pw");
  ASSERT_NE(nullptr, source.sipBackup);

  UsrData copy(source);
  ASSERT_NE(nullptr, copy.sipBackup);
  EXPECT_NE(source.sipBackup, copy.sipBackup);
  source.RollbackSipData();  // frees the source's backup; the copy's must live on
  EXPECT_EQ(1, copy.RollbackSipData());

  // Assigning a record without a backup drops the target's.
  UsrData target;
  target.SubstituteSipData("x", "y");
  target = source;
  EXPECT_EQ(nullptr, target.sipBackup);
  EXPECT_EQ("101", target.name);

  // Assigning one with a backup into a target that has one reuses it.
  source.SubstituteSipData("again", "pw");
  target.SubstituteSipData("other", "pw");
  target = source;
  ASSERT_NE(nullptr, target.sipBackup);
  EXPECT_EQ(source.sipBackup->userName, target.sipBackup->userName);
}

TEST(ExtensionDataTest, ForwardOnFollowsTheFirstAnyCallerContact) {
  ExtensionData extension;
  EXPECT_FALSE(extension.IsForwardOn());

  SupServiceSet forwarding;
  forwarding.forwardUnconditional.active = 1;
  extension.addressBook.emplace_back(Contact("102", 1, kCallNumber), forwarding);
  EXPECT_FALSE(extension.IsForwardOn());  // not the any-caller contact

  extension.addressBook.emplace_back(Contact(gAny, 2, kCallNumber), SupServiceSet());
  extension.addressBook.emplace_back(Contact(gAny, 3, kCallNumber), forwarding);
  EXPECT_FALSE(extension.IsForwardOn());  // the first one decides
  extension.addressBook.erase(std::next(extension.addressBook.begin()));
  EXPECT_TRUE(extension.IsForwardOn());
}

}  // namespace
