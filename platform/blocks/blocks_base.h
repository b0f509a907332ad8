#ifndef CMCFG_PLATFORM_BLOCKS_BLOCKS_BASE_H_
#define CMCFG_PLATFORM_BLOCKS_BLOCKS_BASE_H_

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/document.h"

// A list of configuration blocks of one kind, each known by a numeric id
// (unique within the list) and usually a name. Block types provide
//   void Read(const cfg::Section&);               // from its section
//   void Write(cfg::Document&, cfg::Section&) const;  // into its section
// and the section name of a block is SectionName(id) below.
template <typename Block>
class BlocksBase {
 public:
  BlocksBase() = default;
  BlocksBase(const BlocksBase&) = delete;
  BlocksBase& operator=(const BlocksBase&) = delete;
  virtual ~BlocksBase() = default;

  // The block with that id, or nullptr.
  Block* GetBlock(unsigned long id) const {
    for (const auto& b : blocks_)
      if (b->id == id) return b.get();
    return nullptr;
  }
  // The first block with that name, or nullptr.
  Block* GetBlockByName(const std::string& name) const {
    for (const auto& b : blocks_)
      if (b->name == name) return b.get();
    return nullptr;
  }
  // Pointers to all blocks in file order; the list owns nothing.
  std::list<Block*> GetAllBlocks() const {
    std::list<Block*> all;
    for (const auto& b : blocks_) all.push_back(b.get());
    return all;
  }
  size_t GetBlockCount() const { return blocks_.size(); }
  // One more than the largest id in use (1 for an empty list).
  unsigned long NextId() const {
    unsigned long next = 1;
    for (const auto& b : blocks_)
      if (b->id >= next) next = b->id + 1;
    return next;
  }

 protected:
  std::vector<std::unique_ptr<Block>> blocks_;
};

#endif  // CMCFG_PLATFORM_BLOCKS_BLOCKS_BASE_H_
