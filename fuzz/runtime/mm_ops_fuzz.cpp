// Pool operations driven by the input: the first bytes choose the
// discipline, block size and supply (context allocator, a limit, or a
// caller buffer); the rest is a list of allocate, free, realloc, sub-pool
// and drop operations.  Every live block carries a byte pattern that must
// survive until it is freed, blocks must never overlap, and the forced drop
// must give everything back (the leak checker watches the supplier).
#include <cstdint>
#include <cstdlib>
#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <vector>

#include "kescomn.h"

namespace {

class Reader {
public:
    Reader(const uint8_t *data, size_t size) : data_(data), size_(size) {}
    bool more() const { return pos_ < size_; }
    uint8_t byte() { return pos_ < size_ ? data_[pos_++] : 0; }
    uint16_t u16() { return static_cast<uint16_t>(byte() | byte() << 8); }

private:
    const uint8_t *data_;
    size_t size_;
    size_t pos_ = 0;
};

void require(bool ok)
{
    if (!ok)
        std::abort();
}

struct Block {
    MM_HANDLE *owner;
    CS_UINT written;
    uint8_t seed;
};

uint8_t pattern(uint8_t seed, CS_UINT i) { return static_cast<uint8_t>(seed ^ (i * 29)); }

void check(const void *p, const Block &b)
{
    const auto *bytes = static_cast<const uint8_t *>(p);
    for (CS_UINT i = 0; i < b.written; i++)
        require(bytes[i] == pattern(b.seed, i));
}

// Bytes of a buddy block the caller may really use.
CS_UINT buddy_data(const void *p)
{
    CS_UINT word;
    std::memcpy(&word, static_cast<const uint8_t *>(p) - 8, sizeof word);
    if (word & MM_BUDDY_OVERSIZE)
        return word & ~MM_BUDDY_OVERSIZE;
    return (1u << ((word & MM_BUDDY_INDEX_MASK) + 4)) - 8;
}

class Session {
public:
    Session(CS_INT type, MM_HANDLE *root) : type_(type), root_(root) {}

    void add(void *p, MM_HANDLE *owner, CS_UINT size, uint8_t seed)
    {
        const CS_UINT written = type_ == MM_BUDDY ? std::min(size, buddy_data(p)) : size;
        if (written == 0)
            return; // an empty allocate-only piece shares its address
        const auto at = reinterpret_cast<uintptr_t>(p);
        auto next = live_.lower_bound(at);
        if (next != live_.end())
            require(at + written <= next->first);
        if (next != live_.begin())
            require(std::prev(next)->first + std::prev(next)->second.written <= at);
        Block b{owner, written, seed};
        auto *bytes = static_cast<uint8_t *>(p);
        for (CS_UINT i = 0; i < written; i++)
            bytes[i] = pattern(seed, i);
        live_[at] = b;
    }

    void alloc(MM_HANDLE *owner, CS_UINT size, uint8_t seed)
    {
        void *p = nullptr;
        const bool wrong_size = type_ == MM_UNIFORM && (owner->mmh_status & MM_ST_ALLOCATED) &&
                                size != static_cast<CS_UINT>(owner->mmh_pool.uniform.uniform_size);
        const CS_RETCODE rc = comn_mmalloc(owner, size, &p);
        if (wrong_size) {
            require(rc == CS_FAIL && p == nullptr);
            return;
        }
        if (rc != CS_SUCCEED) {
            require(rc == CS_MEM_ERROR && p == nullptr);
            return;
        }
        for (CS_UINT i = 0; i < size && i < 65536; i++)
            require(static_cast<const uint8_t *>(p)[i] == 0);
        add(p, owner, size, seed);
    }

    std::map<uintptr_t, Block>::iterator pick(uint16_t n)
    {
        auto it = live_.begin();
        std::advance(it, n % live_.size());
        return it;
    }

    void release(uint16_t n)
    {
        if (live_.empty())
            return;
        auto it = pick(n);
        void *p = reinterpret_cast<void *>(it->first);
        check(p, it->second);
        const CS_RETCODE rc = comn_mmfree(it->second.owner, p);
        if (type_ == MM_ALLOCONLY) {
            require(rc == CS_FAIL);
            return;
        }
        require(rc == CS_SUCCEED);
        live_.erase(it);
    }

    void realloc(uint16_t n, CS_UINT size, uint8_t seed)
    {
        if (live_.empty())
            return;
        auto it = pick(n);
        const Block old = it->second;
        void *p = reinterpret_cast<void *>(it->first);
        void *q = p;
        const CS_RETCODE rc = comn_mmrealloc(old.owner, size, &q);
        if (type_ != MM_BUDDY || rc == CS_MEM_ERROR) {
            require(rc == (type_ != MM_BUDDY ? CS_FAIL : CS_MEM_ERROR) && q == p);
            return;
        }
        require(rc == CS_SUCCEED);
        Block kept = old;
        kept.written = std::min(old.written, std::min(size, buddy_data(q)));
        check(q, kept);
        live_.erase(it);
        add(q, old.owner, size, seed);
    }

    MM_HANDLE *child(uint8_t tag)
    {
        MM_HANDLE *h = nullptr;
        if (comn_mmproperty(root_, MM_ACT_GET, MM_PROP_SUBPOOL, &h, tag, nullptr) != CS_SUCCEED)
            return root_;
        return h;
    }

    void drop_child(uint8_t tag)
    {
        MM_HANDLE *h = root_->mmh_child;
        for (uint8_t i = 0; h && i < tag; i++)
            h = h->mmh_sibling;
        if (!h)
            return;
        for (auto it = live_.begin(); it != live_.end();) {
            if (it->second.owner == h) {
                check(reinterpret_cast<void *>(it->first), it->second);
                it = live_.erase(it);
            } else {
                ++it;
            }
        }
        require(comn_mmdrop(h, CS_UNUSED) == CS_SUCCEED);
    }

    void check_all()
    {
        for (auto &[at, b] : live_)
            check(reinterpret_cast<void *>(at), b);
    }

private:
    CS_INT type_;
    MM_HANDLE *root_;
    std::map<uintptr_t, Block> live_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Reader in(data, size);
    const CS_INT type = MM_BUDDY + in.byte() % 3;
    // Mostly small block sizes; the top bit asks for big ones, up to the
    // largest buddy size.
    const uint16_t raw = in.u16();
    const CS_INT blocksize = (raw & 0x8000) ? 1 + ((raw & 0x7fff) << 6) : 1 + raw % 9000;
    const uint8_t supply = in.byte() % 3;

    CS_CONTEXT ctx;
    std::memset(&ctx, 0, sizeof ctx);
    ctx.ctxversion = 114;
    MM_HANDLE *root = nullptr;
    std::vector<uint64_t> buffer;
    if (supply == 2) {
        buffer.resize(36 + in.u16() % 8192);
        if (comn_mmmanage(buffer.data(), static_cast<CS_UINT>(buffer.size() * 8), &root) != CS_SUCCEED)
            return 0;
    } else {
        require(comn_mminit(&ctx, &root) == CS_SUCCEED);
        CS_INT limit = 1 + in.u16() * 8;
        if (supply == 1)
            require(comn_mmproperty(root, MM_ACT_SET, MM_PROP_MAXSIZE, &limit, 4, nullptr) == CS_SUCCEED);
    }
    CS_INT value = type;
    require(comn_mmproperty(root, MM_ACT_SET, MM_PROP_TYPE, &value, 4, nullptr) == CS_SUCCEED);
    value = blocksize;
    require(comn_mmproperty(root, MM_ACT_SET, MM_PROP_BLOCKSIZE, &value, 4, nullptr) == CS_SUCCEED);

    Session session(type, root);
    for (int ops = 0; in.more() && ops < 2000; ops++) {
        const uint8_t op = in.byte();
        MM_HANDLE *owner = (op & 0x80) ? session.child(op & 3) : root;
        switch (op % 7) {
        case 0:
        case 1: session.alloc(owner, (op & 0x40) ? in.u16() : in.byte(), in.byte()); break;
        case 2: session.release(in.u16()); break;
        case 3: session.realloc(in.u16(), in.u16(), in.byte()); break;
        case 4: session.child(in.byte() & 3); break;
        case 5: session.drop_child(in.byte() & 3); break;
        default: session.check_all(); break;
        }
    }
    session.check_all();
    require(comn_mmdrop(root, MM_FORCE_DROP) == CS_SUCCEED);
    return 0;
}
