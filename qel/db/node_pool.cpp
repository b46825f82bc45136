#include "qel/db/node_pool.h"
#include <algorithm>
#include <cstdlib>
#include <new>
#if defined(__linux__)
#include <sys/mman.h>
#endif
#if defined(__SANITIZE_ADDRESS__)
#define TAVO_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAVO_POISON 1
#endif
#endif
#ifdef TAVO_POISON
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(at, size) ((void)(at))
#define ASAN_UNPOISON_MEMORY_REGION(at, size) ((void)(at))
#endif

namespace db {
namespace {

constexpr std::size_t line = 64, firstChunk = 16 << 10, largePage = 2u << 20;

}  // namespace

// An odd number of cache lines: otherwise one attribute of all nodes falls on few sets of the cache.
NodePool::NodePool(std::size_t blockSize) :
    blockSize_(line * ((blockSize + line - 1) / line | 1)), chunkSize_(std::max(firstChunk, blockSize_)) {}

NodePool::~NodePool() {
    for (char* chunk : chunks_) {
        ASAN_UNPOISON_MEMORY_REGION(chunk, blockSize_);
        std::free(chunk);
    }
}

void* NodePool::take() {
    if (!freed_.empty()) {
        void* block = freed_.back();
        freed_.pop_back();
        ASAN_UNPOISON_MEMORY_REGION(block, blockSize_);
        return block;
    }
    if (left_ < blockSize_) {
        std::size_t const alignment = chunkSize_ >= largePage ? largePage : line;
        std::size_t const size = (chunkSize_ + alignment - 1) / alignment * alignment;
        char* chunk = static_cast<char*>(std::aligned_alloc(alignment, size));
        if (!chunk) throw std::bad_alloc();
#if defined(__linux__)
        if (alignment == largePage) madvise(chunk, size, MADV_HUGEPAGE);
#endif
        chunks_.push_back(chunk);
        at_ = chunk;
        left_ = size;
        bytes_ += size;
        chunkSize_ = std::min(chunkSize_ * 4, std::max(largePage, blockSize_));
    }
    void* block = at_;
    at_ += blockSize_;
    left_ -= blockSize_;
    return block;
}

void NodePool::give(void* block) {
    freed_.push_back(block);
    ASAN_POISON_MEMORY_REGION(block, blockSize_);
}

}  // namespace db
