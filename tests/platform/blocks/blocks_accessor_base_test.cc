#include "platform/blocks/blocks_accessor_base.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "platform/blocks/gateway_accessor.h"
#include "tests/support/temp_root.h"

namespace {

using testing_support::TempRoot;

// Any block type will do; gateways are small.
using Notes = BlocksAccessorBase<GatewayBlock>;

class BlocksAccessorBaseTest : public ::testing::Test {
 protected:
  BlocksAccessorBaseTest() { root_.MakeDir("telephony"); }
  std::string File() const { return root_.Path("telephony/notes.cfg"); }
  GatewayBlock* Add(Notes& notes, const std::string& name, int32_t type = 0) {
    std::unique_ptr<GatewayBlock> block = notes.CreateBlock();
    block->name = name;
    block->type = type;
    return notes.InsertBlock(std::move(block));
  }
  TempRoot root_;
};

TEST_F(BlocksAccessorBaseTest, WritesKeepWhatOthersWroteMeanwhile) {
  root_.Write(
      "telephony/notes.cfg",
      "# notes\nsection meta\n{\nowner = ops\n}\nsection 1\n{\nname = a\nextra = kept\n}\n");
  Notes mine(File());
  ASSERT_TRUE(mine.Load());
  Notes theirs(File());
  ASSERT_TRUE(theirs.Load());
  GatewayBlock* their_block = Add(theirs, "theirs");
  ASSERT_NE(nullptr, their_block);
  EXPECT_EQ(2u, their_block->id);

  GatewayBlock* a = mine.GetBlock(1);
  a->type = 9;
  EXPECT_TRUE(mine.SaveBlock(a));
  GatewayBlock* added = Add(mine, "mine");  // id 2 is taken in the file by now
  ASSERT_NE(nullptr, added);
  EXPECT_EQ(3u, added->id);

  ASSERT_TRUE(mine.Load());
  EXPECT_EQ(3u, mine.GetBlockCount());
  EXPECT_EQ(9, mine.GetBlock(1)->type);
  EXPECT_EQ("theirs", mine.GetBlock(2)->name);
  cfg::Document doc;
  ASSERT_TRUE(cfg::LoadDocument(File(), &doc).ok());
  EXPECT_EQ("ops", doc.Find("meta")->Get("owner"));
  EXPECT_EQ("kept", doc.Find("1")->Get("extra"));
}

TEST_F(BlocksAccessorBaseTest, DeleteRemovesEveryCopyOfTheBlock) {
  root_.Write("telephony/notes.cfg",
              "section 4\n{\nname = first\n}\nsection 4\n{\nname = shadow\n}\n"
              "section 5\n{\nname = five\n}\n");
  Notes notes(File());
  ASSERT_TRUE(notes.Load());
  EXPECT_EQ(2u, notes.GetBlockCount());
  EXPECT_EQ("first", notes.GetBlock(4)->name);  // the first section of an id wins

  EXPECT_TRUE(notes.DeleteBlock(4));
  EXPECT_FALSE(notes.DeleteBlock(4));
  EXPECT_EQ(nullptr, notes.GetBlock(4));
  ASSERT_TRUE(notes.Load());
  EXPECT_EQ(nullptr, notes.GetBlock(4));
  EXPECT_EQ("five", notes.GetBlock(5)->name);
}

TEST_F(BlocksAccessorBaseTest, FailedWritesChangeNothing) {
  Notes notes(File());
  GatewayBlock stray;
  EXPECT_FALSE(notes.SaveBlock(&stray));  // not one of its blocks
  EXPECT_FALSE(notes.AddBlock(nullptr));
  EXPECT_FALSE(root_.Exists("telephony/notes.cfg"));

  Notes nowhere(root_.Path("no-such-folder/notes.cfg"));
  EXPECT_TRUE(nowhere.Load());
  EXPECT_FALSE(nowhere.AddBlock(nowhere.CreateBlock()));
  EXPECT_EQ(0u, nowhere.GetBlockCount());
}

TEST_F(BlocksAccessorBaseTest, ConcurrentAddsFromTwoProcessesAllSurvive) {
  const int kPerProcess = 20;
  int start[2];
  ASSERT_EQ(0, pipe(start));
  pid_t children[2];
  for (int c = 0; c < 2; ++c) {
    children[c] = fork();
    ASSERT_GE(children[c], 0);
    if (children[c] == 0) {
      close(start[1]);
      Notes notes(File());
      bool ok = notes.Load();  // both start from the same, empty file
      char byte;
      ok = ok && read(start[0], &byte, 1) == 0;  // wait until the parent lets go
      for (int i = 0; i < kPerProcess && ok; ++i)
        ok = Add(notes, "p" + std::to_string(c) + "-" + std::to_string(i)) != nullptr;
      _exit(ok ? 0 : 1);
    }
  }
  close(start[0]);
  close(start[1]);
  for (pid_t child : children) {
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  Notes notes(File());
  ASSERT_TRUE(notes.Load());
  std::set<std::string> names;
  for (GatewayBlock* block : notes.GetAllBlocks()) names.insert(block->name);
  EXPECT_EQ(2u * kPerProcess, notes.GetBlockCount());
  EXPECT_EQ(2u * kPerProcess, names.size());
}

}  // namespace
