// Memory for the nodes of one type in one database: blocks of one size without headers, in chunks that grow.
#pragma once
#include <cstddef>
#include <vector>

namespace db {

class NodePool {
public:
    explicit NodePool(std::size_t blockSize);
    NodePool(NodePool const&) = delete;
    NodePool& operator=(NodePool const&) = delete;
    ~NodePool();

    void* take();
    void give(void* block);
    std::size_t bytes() const { return bytes_; }

private:
    std::size_t blockSize_, chunkSize_, left_ = 0, bytes_ = 0;
    char* at_ = nullptr;
    std::vector<void*> freed_;
    std::vector<char*> chunks_;
};

}  // namespace db
