#include "platform/base/multi_section_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "tests/support/temp_root.h"

namespace Configuration {
namespace {

class MultiSectionFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_.Write("users.cfg",
                "section one\n{\nuser_name = alice\n}\n"
                "section two\n{\nuser_name = bob\nempty =\n}\n"
                "section three\n{\nuser_name = carol\n}\n");
  }

  // How the external-user reader opens its file.
  std::unique_ptr<MultiSectionFile> OpenForUpdate(const std::string& name,
                                                  bool createIfMissing = false) {
    return std::make_unique<MultiSectionFile>(root_.Path(name), true, false, createIfMissing,
                                              "section", "{\n", "}\n", "=", "#", nullptr);
  }
  // How the tone reader opens its file.
  std::unique_ptr<MultiSectionFile> OpenShared(const std::string& name) {
    return std::make_unique<MultiSectionFile>(root_.Path(name), false, true, false, "section",
                                              "{\n", "}\n", "=", "#", nullptr);
  }

  static std::string Entry(const MultiSectionFile& f, const char* key, size_t size = 64) {
    std::string buffer(size, 'X');
    f.GetSectionEntry(key, buffer.data(), size);
    return buffer.c_str();
  }

  testing_support::TempRoot root_;
};

TEST_F(MultiSectionFileTest, CursorWalksSectionsInOrder) {
  auto f = OpenShared("users.cfg");
  ASSERT_TRUE(f->IsOpen());
  EXPECT_EQ(3u, f->GetSectionCount());
  EXPECT_EQ("", f->GetSectionName());
  EXPECT_EQ("", Entry(*f, "user_name"));
  std::string names;
  for (f->Restart(); f->GotoNextSection();) names += f->GetSectionName() + ",";
  EXPECT_EQ("one,two,three,", names);
  EXPECT_EQ("three", f->GetSectionName());  // cursor stays on the last
  ASSERT_TRUE(f->GotoSection("two"));
  EXPECT_EQ("bob", Entry(*f, "user_name"));
  EXPECT_FALSE(f->GotoSection("four"));
  EXPECT_EQ("two", f->GetSectionName());
}

TEST_F(MultiSectionFileTest, GetSectionEntryTellsMissingFromEmptyAndCuts) {
  auto f = OpenShared("users.cfg");
  ASSERT_TRUE(f->GotoSection("two"));
  char buffer[4] = "abc";
  EXPECT_TRUE(f->GetSectionEntry("empty", buffer, sizeof(buffer)));
  EXPECT_STREQ("", buffer);
  std::strcpy(buffer, "abc");
  EXPECT_FALSE(f->GetSectionEntry("absent", buffer, sizeof(buffer)));
  EXPECT_STREQ("", buffer);
  EXPECT_TRUE(f->GetSectionEntry("user_name", buffer, sizeof(buffer)));
  EXPECT_STREQ("bob", buffer);
  EXPECT_EQ("bo", Entry(*f, "user_name", 3));
  EXPECT_FALSE(f->GetSectionEntry("user_name", buffer, 0));
}

TEST_F(MultiSectionFileTest, UnusablePathsOpenWithNoSections) {
  root_.MakeDir("dir.cfg");
  root_.Write("empty.cfg", "");
  for (const char* name : {"dir.cfg", "missing.cfg"}) {
    auto f = OpenShared(name);
    EXPECT_FALSE(f->IsOpen()) << name;
    EXPECT_EQ(0u, f->GetSectionCount()) << name;
    EXPECT_FALSE(f->GotoNextSection()) << name;
    EXPECT_FALSE(f->GotoLastSection()) << name;
    EXPECT_FALSE(f->DeleteSection()) << name;
  }
  MultiSectionFile none("", true, false, true, "section", "{\n", "}\n", "=", "#", nullptr);
  EXPECT_FALSE(none.IsOpen());
  EXPECT_FALSE(none.Save(true));
  EXPECT_EQ(0u, OpenShared("empty.cfg")->GetSectionCount());
}

TEST_F(MultiSectionFileTest, DeletingFromTheEndAndSavingTrimsTheFile) {
  {
    auto f = OpenForUpdate("users.cfg");
    ASSERT_TRUE(f->GotoLastSection());
    ASSERT_TRUE(f->DeleteSection());
    EXPECT_EQ("two", f->GetSectionName());
    ASSERT_TRUE(f->Save(true));
  }
  auto f = OpenShared("users.cfg");
  ASSERT_EQ(2u, f->GetSectionCount());
  ASSERT_TRUE(f->GotoLastSection());
  EXPECT_EQ("bob", Entry(*f, "user_name"));
}

TEST_F(MultiSectionFileTest, DeletingTheFirstPutsCursorBeforeTheStart) {
  auto f = OpenForUpdate("users.cfg");
  ASSERT_TRUE(f->GotoNextSection());
  ASSERT_TRUE(f->DeleteSection());
  EXPECT_EQ("", f->GetSectionName());
  ASSERT_TRUE(f->GotoNextSection());
  EXPECT_EQ("two", f->GetSectionName());
}

TEST_F(MultiSectionFileTest, SaveNeedsUpdateModeAndCreatesOnlyWhenAllowed) {
  auto shared = OpenShared("users.cfg");
  shared->GotoLastSection();
  shared->DeleteSection();
  EXPECT_FALSE(shared->Save(true));
  EXPECT_FALSE(OpenForUpdate("new.cfg")->Save(true));
  EXPECT_FALSE(root_.Exists("new.cfg"));
  EXPECT_FALSE(root_.Exists("new.cfg.lock"));

  auto created = OpenForUpdate("new.cfg", true);
  EXPECT_FALSE(created->SetSectionEntry("k", "v"));  // no current section yet
  ASSERT_TRUE(created->AddSection("fresh"));
  EXPECT_FALSE(created->SetSectionEntry("bad=key", "v"));
  ASSERT_TRUE(created->SetSectionEntry("k", "two\nlines"));
  ASSERT_TRUE(created->Save(false));
  created.reset();
  auto f = OpenShared("new.cfg");
  ASSERT_TRUE(f->GotoSection("fresh"));
  EXPECT_EQ("two\nlines", Entry(*f, "k"));
}

}  // namespace
}  // namespace Configuration
