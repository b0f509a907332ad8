#ifndef CMCFG_PLATFORM_BLOCKS_BLOCKS_ACCESSOR_BASE_H_
#define CMCFG_PLATFORM_BLOCKS_BLOCKS_ACCESSOR_BASE_H_

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/base/document.h"
#include "platform/base/document_store.h"
#include "platform/base/file_lock.h"
#include "platform/base/status.h"
#include "platform/blocks/block_sections.h"
#include "platform/blocks/blocks_base.h"

// A list of blocks kept in one file, one section per block named by the
// block's decimal id. Sections whose name is not an id, and later sections
// repeating an id (the first one wins), are ignored when reading and kept
// untouched when writing.
//
// Every write is a read-modify-write of the file under its FileLock: the
// file is read again, only the written block's section is replaced, added or
// removed, and the result saved atomically. So blocks written by another
// process in the meantime survive; they become visible here at the next
// Load().
//
// Block needs default construction, `unsigned long id`, `std::string name`,
// `void Read(const cfg::Section&)` (missing keys keep the defaults) and
// `void Write(cfg::Document&, cfg::Section&) const`.
//
// Not thread-safe: the caller serialises use of one accessor object (the
// process-wide ones through their Lock). Block pointers stay valid until the
// block is deleted or Load() runs again.
template <typename Block>
class BlocksAccessorBase : public BlocksBase<Block> {
 public:
  explicit BlocksAccessorBase(std::string path) : path_(std::move(path)) {}

  const std::string& path() const { return path_; }

  // Replaces the blocks by the file's. A missing file gives no blocks; a
  // file that cannot be read leaves the blocks as they were.
  cfg::Status LoadStatus() {
    try {
      cfg::Document doc;
      cfg::Status status = cfg::LoadDocument(path_, &doc);
      if (status.IsNotFound()) {
        this->blocks_.clear();
      } else if (status.ok()) {
        ReadBlocks(doc);
      }
      return status;
    } catch (...) {  // out of memory
      return cfg::Status::IOError("out of memory");
    }
  }
  // True when the file was read or is missing.
  bool Load() {
    cfg::Status status = LoadStatus();
    return status.ok() || status.IsNotFound();
  }

  // A new block with the next free id, not yet stored; nullptr when it
  // cannot be made.
  std::unique_ptr<Block> CreateBlock() const {
    std::unique_ptr<Block> block(new (std::nothrow) Block());
    if (block) block->id = this->NextId();
    return block;
  }

  // Stores a new block in the file and keeps it. When its id is already
  // taken here or in the file (another process may have added one since our
  // Load), the block gets the next id free in both. Returns the kept block,
  // or nullptr (block dropped) when the file could not be written.
  Block* InsertBlock(std::unique_ptr<Block> block) {
    if (!block) return nullptr;
    try {
      Block* raw = block.get();
      cfg::Status status = Edit([&](cfg::Document& doc) {
        if (this->GetBlock(raw->id) != nullptr ||
            blocks::FindBlockSection(doc, raw->id) < doc.size())
          raw->id = std::max(this->NextId(), blocks::LargestBlockId(doc) + 1);
        cfg::Section& section = doc.AddBeside(blocks::SectionName(raw->id));
        raw->Write(doc, section);
        return true;
      });
      if (!status.ok()) return nullptr;
      this->blocks_.push_back(std::move(block));
      return raw;
    } catch (...) {
      return nullptr;
    }
  }
  bool AddBlock(std::unique_ptr<Block> block) { return InsertBlock(std::move(block)) != nullptr; }

  // Writes back one of this accessor's blocks (changed in place by the
  // caller). False for a block that is not this accessor's or when the file
  // could not be written.
  bool SaveBlock(const Block* block) {
    if (block == nullptr || this->GetBlock(block->id) != block) return false;
    try {
      cfg::Status status = Edit([&](cfg::Document& doc) {
        size_t index = blocks::FindBlockSection(doc, block->id);
        if (index == doc.size()) {
          doc.AddBeside(blocks::SectionName(block->id));
          index = blocks::FindBlockSection(doc, block->id);
        }
        WriteChanged(*block, doc, doc[index]);
        return true;
      });
      return status.ok();
    } catch (...) {
      return false;
    }
  }

  // Removes the block from the file (every section of that id) and from
  // here. False when neither held it or the file could not be written.
  bool DeleteBlock(unsigned long id) {
    try {
      bool erased = false;
      cfg::Status status = Edit([&](cfg::Document& doc) {
        erased = blocks::EraseBlockSections(&doc, id) > 0;
        return erased;
      });
      if (!status.ok()) return false;
      auto& list = this->blocks_;
      auto it = std::find_if(list.begin(), list.end(), [id](const auto& b) { return b->id == id; });
      if (it == list.end()) return erased;
      list.erase(it);
      return true;
    } catch (...) {
      return false;
    }
  }

  // Runs `body` as one change of the file, decided on the file as it is
  // now: takes the file's lock, reads the blocks from the file again (as
  // Load does: block pointers handed out before are invalid) and runs
  // `body`, whose InsertBlock, SaveBlock and DeleteBlock go into that
  // reading; it is saved once, atomically, when body returns true. OK, or
  // why nothing was saved (also reported through the store's reporter).
  // Within a change, a nested Update just runs its body.
  cfg::Status Update(const std::function<bool()>& body) {
    if (changing_ != nullptr) {
      body();
      return cfg::Status::OK();
    }
    try {
      return cfg::UpdateDocument(path_, [&](cfg::Document& doc) {
        ReadBlocks(doc);
        changing_ = &doc;
        changed_ = false;
        bool keep = false;
        try {
          keep = body();
        } catch (...) {
          changing_ = nullptr;
          throw;
        }
        changing_ = nullptr;
        return keep && changed_;
      });
    } catch (...) {  // out of memory
      return cfg::Status::IOError("out of memory");
    }
  }

 private:
  // Applies `edit` to the file: within Update to its reading, otherwise as
  // a locked read-modify-write of its own.
  cfg::Status Edit(const std::function<bool(cfg::Document&)>& edit) {
    if (changing_ == nullptr) return cfg::UpdateDocument(path_, edit);
    if (edit(*changing_)) changed_ = true;
    return cfg::Status::OK();
  }

  // Sets the keys of `block` whose values differ from what `section` reads
  // as now (a missing key as the default), so a save changes only the lines
  // of what changed.
  static void WriteChanged(const Block& block, cfg::Document& doc, cfg::Section& section) {
    Block now;
    now.Read(section);
    cfg::Document scratch;
    cfg::Section& want = scratch.Add("want");
    block.Write(scratch, want);
    cfg::Section& have = scratch.Add("have");
    now.Write(scratch, have);
    for (const cfg::Entry& e : scratch.Find("want")->entries)
      if (!have.Has(e.key) || have.Get(e.key) != e.value) doc.Set(section, e.key, e.value);
  }

  void ReadBlocks(const cfg::Document& doc) {
    this->blocks_.clear();
    std::unordered_set<unsigned long> seen;
    for (const cfg::Section& section : doc.sections()) {
      unsigned long id = 0;
      if (!blocks::ParseBlockId(section.name, &id) || !seen.insert(id).second) continue;
      std::unique_ptr<Block> block(new Block());
      block->Read(section);
      block->id = id;
      this->blocks_.push_back(std::move(block));
    }
  }

  const std::string path_;
  cfg::Document* changing_ = nullptr;  // the reading of the Update under way
  bool changed_ = false;
};

#endif  // CMCFG_PLATFORM_BLOCKS_BLOCKS_ACCESSOR_BASE_H_
