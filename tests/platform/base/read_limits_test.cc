// What the store reads and what it refuses: files past the size bound,
// paths that are not regular files, and large but legal shapes of text.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/document_store.h"
#include "platform/base/posix_file_system.h"
#include "tests/support/temp_root.h"

namespace cfg {
namespace {

// Makes `path` a sparse file of `size` bytes: nothing is written to disk.
void MakeSparse(const std::string& path, off_t size) {
  int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(0, ftruncate(fd, size));
  close(fd);
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class ReadLimitsTest : public ::testing::Test {
 protected:
  // Every way the store reads a file, each expected to refuse `relative`
  // with an IOError whose message names the file and holds `reason`, and
  // to leave what it was given to fill as it was.
  void ExpectRefused(const std::string& relative, const std::string& reason) {
    const std::string path = root_.Path(relative);
    PosixFileSystem fs;
    std::string contents = "untouched";
    Status s = fs.ReadFile(path, &contents);
    EXPECT_EQ(Status::kIOError, s.code()) << relative << ": " << s.ToString();
    EXPECT_TRUE(Contains(s.message(), path)) << s.message();
    EXPECT_TRUE(Contains(s.message(), reason)) << s.message();
    EXPECT_EQ("untouched", contents);

    std::unique_ptr<Arena> arena;
    std::string_view view = "untouched";
    s = fs.ReadFileToArena(path, &arena, &view);
    EXPECT_EQ(Status::kIOError, s.code()) << relative << ": " << s.ToString();
    EXPECT_TRUE(Contains(s.message(), reason)) << s.message();
    EXPECT_EQ(nullptr, arena);
    EXPECT_EQ("untouched", view);

    Document doc = Document::Parse("section old\n{\nk = v\n}\n");
    EXPECT_EQ(Status::kIOError, LoadDocument(path, &doc).code()) << relative;
    EXPECT_TRUE(doc.empty()) << relative;
  }

  testing_support::TempRoot root_;
};

TEST_F(ReadLimitsTest, FilesPastTheBoundAreRefusedBeforeReading) {
  // A sparse gigabyte: read whole it would take a gigabyte of memory.
  MakeSparse(root_.Path("huge.cfg"), off_t{1} << 30);
  ExpectRefused("huge.cfg", "64 MiB");
  MakeSparse(root_.Path("just_over.cfg"), static_cast<off_t>(kMaxConfigFileBytes) + 1);
  ExpectRefused("just_over.cfg", std::to_string(kMaxConfigFileBytes));
}

TEST_F(ReadLimitsTest, WhatIsNotARegularFileIsReportedNotRead) {
  root_.MakeDir("dir.cfg");
  ExpectRefused("dir.cfg", "a directory");

  // No writer: a blocking open or read would wait for one for ever.
  ASSERT_EQ(0, mkfifo(root_.Path("fifo.cfg").c_str(), 0644));
  ExpectRefused("fifo.cfg", "a FIFO");
  ASSERT_EQ(0, symlink(root_.Path("fifo.cfg").c_str(), root_.Path("to_fifo.cfg").c_str()));
  ExpectRefused("to_fifo.cfg", "a FIFO");

  // Endless: read whole it would never end.
  ASSERT_EQ(0, symlink("/dev/zero", root_.Path("zero.cfg").c_str()));
  ExpectRefused("zero.cfg", "a device");

  ASSERT_EQ(0, symlink(root_.Path("b.cfg").c_str(), root_.Path("a.cfg").c_str()));
  ASSERT_EQ(0, symlink(root_.Path("a.cfg").c_str(), root_.Path("b.cfg").c_str()));
  ExpectRefused("a.cfg", "symbolic links");
  ASSERT_EQ(0, symlink("self.cfg", root_.Path("self.cfg").c_str()));
  ExpectRefused("self.cfg", "symbolic links");
}

// The shapes below are legal and large; each would take minutes if any
// step of loading them were quadratic.
class LargeShapesTest : public ReadLimitsTest {
 protected:
  Document Load(const std::string& text) {
    root_.Write("big.cfg", text);
    Document doc;
    Status s = LoadDocument(root_.Path("big.cfg"), &doc);
    EXPECT_TRUE(s.ok()) << s.ToString();
    return doc;
  }
};

TEST_F(LargeShapesTest, LineOfOneMebibyte) {
  const std::string value(size_t{1} << 20, 'v');
  Document doc = Load("section s\n{\nk = " + value + "\njunk " + value + "\n}\n");
  ASSERT_EQ(1u, doc.size());
  EXPECT_EQ(value, doc[0].Get("k"));
  // The junk line is kept whole for the save, quoted only in part.
  ASSERT_EQ(1u, doc[0].verbatim().size());
  EXPECT_EQ("junk " + value, doc[0].verbatim()[0].text);
  ASSERT_EQ(1u, doc.diagnostics().size());
  EXPECT_LT(doc.diagnostics()[0].text.size(), size_t{1000});
}

TEST_F(LargeShapesTest, HundredThousandSections) {
  const size_t kSections = 100000;
  std::string text;
  for (size_t i = 0; i < kSections; ++i)
    text += "section s" + std::to_string(i % (kSections / 2)) + "\n{\nk = " + std::to_string(i) + "\n}\n";
  Document doc = Load(text);
  ASSERT_EQ(kSections, doc.size());
  // Duplicate names are kept; the lookup finds the first of each.
  EXPECT_EQ("49999", doc.Find("s49999")->Get("k"));
  EXPECT_EQ("99999", doc[kSections - 1].Get("k"));
  EXPECT_EQ(doc.Find("s0"), &doc[0]);
  EXPECT_EQ(nullptr, doc.Find("s50000"));
}

TEST_F(LargeShapesTest, MillionKeysInOneSection) {
  const size_t kKeys = 1000000;
  std::string text = "section s\n{\n";
  for (size_t i = 0; i < kKeys; ++i) text += "k" + std::to_string(i) + " = " + std::to_string(i * 7) + "\n";
  text += "}\n";
  Document doc = Load(text);
  ASSERT_EQ(1u, doc.size());
  ASSERT_EQ(kKeys, doc[0].entries.size());
  EXPECT_EQ("6999993", doc[0].Get("k999999"));
  EXPECT_EQ(kKeys, doc[0].entries.back().line - 2);
}

TEST_F(LargeShapesTest, GarbageReportsAtMostTheCap) {
  std::string text;
  for (size_t i = 0; i < 200000; ++i) text += "garbage line " + std::to_string(i) + "\n";
  Document doc = Load(text);
  EXPECT_TRUE(doc.empty());
  EXPECT_EQ(200000u, doc.verbatim_after().size());
  // The cap, then one line telling that the rest is not reported.
  ASSERT_EQ(101u, doc.diagnostics().size());
  EXPECT_EQ(1u, doc.diagnostics()[0].line);
  EXPECT_TRUE(Contains(doc.diagnostics().back().message, "too many"));
}

}  // namespace
}  // namespace cfg
