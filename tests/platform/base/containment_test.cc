// The store stays inside the configuration root: links out of it are
// neither read nor written through, and no value can reshape a file.
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

#include "platform/base/config_root.h"
#include "platform/base/document_store.h"
#include "platform/base/posix_file_system.h"
#include "tests/support/temp_root.h"

namespace cfg {
namespace {

const char kSecret[] = "section secret\n{\nk = outside\n}\n";

class ContainmentTest : public ::testing::Test {
 protected:
  void SetUp() override {
    outside_.Write("secret.cfg", kSecret);
    outside_.MakeDir("folder");
    outside_.Write("folder/ext.cfg", kSecret);
  }
  void Link(const std::string& target, const std::string& relative) {
    ASSERT_EQ(0, symlink(target.c_str(), root_.Path(relative).c_str())) << relative;
  }
  // `relative` in outside_ as seen from its parent folder, which it shares
  // with root_.
  std::string FromSibling(const std::string& relative) const {
    const std::string& dir = outside_.path();  // ends in "/"
    return dir.substr(dir.rfind('/', dir.size() - 2) + 1) + relative;
  }
  // ReadFile of `path`: the status, with *contents left as it was on error.
  Status Read(const std::string& path, std::string* contents) {
    *contents = "untouched";
    return fs_.ReadFile(path, contents);
  }
  void ExpectOutsideRefused(const std::string& path) {
    std::string contents;
    Status s = Read(path, &contents);
    EXPECT_EQ(Status::kIOError, s.code()) << path << ": " << s.ToString();
    EXPECT_NE(std::string::npos, s.message().find("outside the configuration root")) << s.message();
    EXPECT_EQ("untouched", contents);
    Document doc;
    EXPECT_EQ(Status::kIOError, LoadDocument(path, &doc).code()) << path;
    EXPECT_EQ(nullptr, doc.Find("secret")) << path;
  }
  // The planted files outside are as they were and nothing was added.
  void ExpectOutsideUnchanged() {
    EXPECT_EQ(kSecret, outside_.Read("secret.cfg"));
    EXPECT_EQ(kSecret, outside_.Read("folder/ext.cfg"));
    std::vector<std::string> names;
    ASSERT_TRUE(fs_.ListDir(outside_.Path("folder"), &names).ok());
    EXPECT_EQ(std::vector<std::string>{"ext.cfg"}, names);
  }

  // Made first: root_ then points the configuration root at itself.
  testing_support::TempRoot outside_;
  testing_support::TempRoot root_;
  PosixFileSystem fs_;
};

TEST_F(ContainmentTest, LinksOutOfTheRootAreNotRead) {
  Link(outside_.Path("secret.cfg"), "abs.cfg");
  Link("../" + FromSibling("secret.cfg"), "rel.cfg");
  Link(outside_.Path("folder"), "ext");
  ExpectOutsideRefused(root_.Path("abs.cfg"));
  ExpectOutsideRefused(root_.Path("rel.cfg"));
  ExpectOutsideRefused(root_.Path("ext/ext.cfg"));
  // Dots in the name resolve outside as well.
  root_.MakeDir("sub");
  ExpectOutsideRefused(root_.Path("sub/../../" + FromSibling("secret.cfg")));
  ExpectOutsideUnchanged();
}

TEST_F(ContainmentTest, LinksWithinTheRootAreRead) {
  root_.Write("real/a.cfg", "section a\n{\n}\n");
  Link(root_.Path("real/a.cfg"), "abs.cfg");
  Link("real/a.cfg", "rel.cfg");
  Link(root_.Path("real"), "folder");
  root_.MakeDir("sub");
  for (const char* name : {"abs.cfg", "rel.cfg", "folder/a.cfg", "sub/../real/a.cfg"}) {
    std::string contents;
    Status s = Read(root_.Path(name), &contents);
    EXPECT_TRUE(s.ok()) << name << ": " << s.ToString();
    EXPECT_EQ("section a\n{\n}\n", contents) << name;
  }
}

// Opened from the root's descriptor, the kernel keeps the walk inside; an
// absolute link, which it will not follow there, is still read when it
// points inside.
TEST_F(ContainmentTest, TheRootsDescriptorHoldsTheSameRule) {
  RootScope scope;
  root_.Write("real/a.cfg", "section a\n{\n}\n");
  root_.MakeDir("sub");
  Link(outside_.Path("secret.cfg"), "abs.cfg");
  Link("../" + FromSibling("secret.cfg"), "rel.cfg");
  Link(outside_.Path("folder"), "ext");
  Link(root_.Path("real/a.cfg"), "in-abs.cfg");
  Link("real/a.cfg", "in-rel.cfg");
  for (const std::string& name : {std::string("abs.cfg"), std::string("rel.cfg"),
                                  std::string("ext/ext.cfg"), "sub/../../" + FromSibling("secret.cfg")})
    ExpectOutsideRefused(root_.Path(name));
  for (const char* name : {"in-abs.cfg", "in-rel.cfg", "sub/../real/a.cfg"}) {
    std::string contents;
    EXPECT_TRUE(Read(root_.Path(name), &contents).ok()) << name;
    EXPECT_EQ("section a\n{\n}\n", contents) << name;
  }
  std::string contents;
  EXPECT_TRUE(Read(root_.Path("missing.cfg"), &contents).IsNotFound());
}

TEST_F(ContainmentTest, RootReachedThroughALinkHoldsTheSameRule) {
  std::string alias = outside_.Path("alias");
  ASSERT_EQ(0, symlink(root_.path().c_str(), alias.c_str()));
  ASSERT_EQ(0, setenv("ORBA_PATH", (alias + "/").c_str(), 1));
  root_.Write("inside.cfg", "x");
  Link(outside_.Path("secret.cfg"), "abs.cfg");
  std::string contents;
  EXPECT_TRUE(Read(alias + "/inside.cfg", &contents).ok());
  EXPECT_EQ("x", contents);
  ExpectOutsideRefused(alias + "/abs.cfg");
}

TEST_F(ContainmentTest, PathsOutsideTheRootAreReadAsGiven) {
  // The rule is about the root's own files; the store reads any other
  // path it is handed (a tool comparing two roots, a test's files).
  std::string contents;
  EXPECT_TRUE(Read(outside_.Path("secret.cfg"), &contents).ok());
  EXPECT_EQ(kSecret, contents);
}

TEST_F(ContainmentTest, WritesDoNotFollowLinksOutOfTheRoot) {
  Link(outside_.Path("folder"), "ext");
  Link(outside_.Path("secret.cfg"), "abs.cfg");
  Document doc = Document::Parse("section mine\n{\nk = 1\n}\n");
  EXPECT_EQ(Status::kIOError, SaveDocument(root_.Path("ext/new.cfg"), doc).code());
  EXPECT_EQ(Status::kIOError, SaveDocument(root_.Path("ext/ext.cfg"), doc).code());
  EXPECT_EQ(Status::kIOError, SaveDocument(root_.Path("abs.cfg"), doc).code());
  // Nor does a read-modify-write leave its lock file out there.
  EXPECT_FALSE(UpdateDocument(root_.Path("ext/ext.cfg"), [](Document&) { return true; }).ok());
  ExpectOutsideUnchanged();
  // Inside, writes go on as before.
  EXPECT_TRUE(SaveDocument(root_.Path("own.cfg"), doc).ok());
  EXPECT_EQ("section mine\n{\nk = 1\n}\n", root_.Read("own.cfg"));
}

TEST(RootNamesTest, UnderRootNameIsAboutTheTextOnly) {
  testing_support::TempRoot root;
  EXPECT_TRUE(IsUnderRootName(root.Path("a.cfg")));
  EXPECT_TRUE(IsUnderRootName(root.Path("../elsewhere")));  // resolved later, when opened
  EXPECT_FALSE(IsUnderRootName(root.path()));
  EXPECT_FALSE(IsUnderRootName("/etc/passwd"));
  std::string bare = root.path().substr(0, root.path().size() - 1);
  ASSERT_EQ(0, setenv("ORBA_PATH", bare.c_str(), 1));
  EXPECT_TRUE(IsUnderRootName(bare + "/a.cfg"));
  EXPECT_FALSE(IsUnderRootName(bare + "x/a.cfg"));  // a sibling that shares the prefix
  EXPECT_FALSE(IsUnderRootName(bare + "/"));
}

TEST(RootNamesTest, PlainFileNamesCannotLeaveTheirFolder) {
  for (const char* good : {"101", "a.b", "..x", "x..", "name with blanks", "-"})
    EXPECT_TRUE(IsPlainFileName(good)) << good;
  for (std::string bad : {std::string(), std::string("."), std::string(".."), std::string("../x"),
                          std::string("/abs"), std::string("a/b"), std::string("x\n"),
                          std::string("a\0b", 3), std::string("\x7f")})
    EXPECT_FALSE(IsPlainFileName(bad)) << bad;
}

// No value, whatever it holds, can add, end or rename a section once saved
// and read back.
TEST_F(ContainmentTest, ValuesCannotReshapeTheFile) {
  const std::string hostile[] = {
      "1\n}\nsection evil\n{\nk = 2",
      "}",
      "section evil",
      "\nsection evil\n",
      std::string("a\0}\nsection evil\n", 18),
      "\"quoted\"\n}\n",
      "# comment\n{",
      std::string(size_t{1} << 20, '}') + "\nsection evil\n{\n",
  };
  Document doc;
  doc.Add("first");
  doc.Add("second");
  for (size_t i = 0; i < sizeof(hostile) / sizeof(hostile[0]); ++i) {
    doc.Set(doc[0], "k" + std::to_string(i), hostile[i]);
    doc.Set(doc[1], "k" + std::to_string(i), hostile[i]);
  }
  ASSERT_TRUE(SaveDocument(root_.Path("hostile.cfg"), doc).ok());
  Document back;
  ASSERT_TRUE(LoadDocument(root_.Path("hostile.cfg"), &back).ok());
  ASSERT_EQ(2u, back.size());
  EXPECT_EQ("first", back[0].name);
  EXPECT_EQ("second", back[1].name);
  EXPECT_EQ(nullptr, back.Find("evil"));
  for (size_t i = 0; i < sizeof(hostile) / sizeof(hostile[0]); ++i) {
    EXPECT_EQ(hostile[i], back[0].Get("k" + std::to_string(i))) << i;
    EXPECT_EQ(hostile[i], back[1].Get("k" + std::to_string(i))) << i;
  }
  EXPECT_TRUE(back.diagnostics().empty());
  EXPECT_TRUE(doc == back);
}

}  // namespace
}  // namespace cfg
