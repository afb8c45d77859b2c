// Serialised form of grid levels and of the multi-level index.
//
// Index block: signature "RLE\0", metadata length M, M bytes of metadata, then one level block per
// level that has rows. Level block: length L (header included), 4 reserved zero bytes, level
// number, start row, row count N, then N row records: run count n and n pairs (start, end).
// Every integer is 32 bits, big-endian on every machine. Blocks come from files and are not
// trusted: readers check each count against the bytes they were given before reading or
// allocating, and refuse what does not fit.
#include <sys/stat.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "index/RLEIndex.h"

namespace {
constexpr int kLevelHeader = 20;
constexpr int kIndexHeader = 8;

void PutU32(unsigned char* p, uint32_t v) {
    p[0] = static_cast<unsigned char>(v >> 24);
    p[1] = static_cast<unsigned char>(v >> 16);
    p[2] = static_cast<unsigned char>(v >> 8);
    p[3] = static_cast<unsigned char>(v);
}

void PutI32(unsigned char* p, int v) { PutU32(p, static_cast<uint32_t>(v)); }

uint32_t GetU32(const unsigned char* p) {
    return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 |
           static_cast<uint32_t>(p[2]) << 8 | static_cast<uint32_t>(p[3]);
}

int GetI32(const unsigned char* p) { return static_cast<int>(GetU32(p)); }

// Exact length of a level block, before it is narrowed to the 32-bit length field.
unsigned long long LevelBytes(const RLERows& rows) {
    unsigned long long length = kLevelHeader;
    for (const RLERowRuns& runs : rows)
        length += 4 + 8ull * runs.size();
    return length;
}
}  // namespace

int CRLEIndexQuery::BlockLength() const {
    return static_cast<int>(static_cast<uint32_t>(LevelBytes(*this)));
}

int CRLEIndexQuery::Save(unsigned char* buf, int capacity) const {
    if (RLERows::empty() || buf == nullptr) return 0;
    const unsigned long long length = LevelBytes(*this);
    if (capacity < 0 || length > static_cast<unsigned long long>(capacity)) return 0;
    PutU32(buf, static_cast<uint32_t>(length));
    PutU32(buf + 4, 0);
    PutI32(buf + 8, m_level);
    PutI32(buf + 12, m_startRow);
    PutI32(buf + 16, static_cast<int>(RLERows::size()));
    unsigned char* p = buf + kLevelHeader;
    for (const RLERowRuns& runs : *this) {
        PutI32(p, static_cast<int>(runs.size()));
        p += 4;
        for (const RLE& run : runs) {
            PutI32(p, run.start);
            PutI32(p + 4, run.end);
            p += 8;
        }
    }
    return static_cast<int>(length);
}

int CRLEIndexQuery::Load(const unsigned char* buf, int length) {
    // No L can be both above the header's 20 bytes and within a shorter length.
    if (buf == nullptr || length <= kLevelHeader) return 0;
    const uint32_t blockLength = GetU32(buf);
    if (blockLength <= kLevelHeader || blockLength > static_cast<uint32_t>(length)) return 0;
    const int startRow = GetI32(buf + 12);
    const int rowCount = GetI32(buf + 16);
    // A band past the largest row would wrap to the smallest: no grid can hold it.
    if (static_cast<long long>(startRow) + rowCount - 1 > INT_MAX) return 0;
    m_level = GetI32(buf + 8);
    m_startRow = startRow;
    RLERows().swap(*this);
    if (rowCount < 0) throw std::length_error("vector::reserve");
    if (rowCount < 1) return static_cast<int>(blockLength);

    const size_t end = static_cast<size_t>(length);
    size_t pos = kLevelHeader;
    // A row record takes 4 bytes at least: no more rows are reserved than the bytes can hold.
    RLERows::reserve(std::min(static_cast<size_t>(rowCount), (end - pos) / 4));
    for (int i = 0; i < rowCount; ++i) {
        if (end - pos < 4) return 0;
        const int runCount = GetI32(buf + pos);
        pos += 4;
        if (runCount < 0) throw std::length_error("vector::reserve");
        if (static_cast<size_t>(runCount) > (end - pos) / 8) return 0;
        RLERowRuns runs;
        runs.reserve(static_cast<size_t>(runCount));
        for (int k = 0; k < runCount; ++k, pos += 8) {
            runs.emplace_back(GetI32(buf + pos), GetI32(buf + pos + 4));
        }
        RLERows::push_back(std::move(runs));
        // Checked after each complete row: the row that crosses L is kept.
        if (pos > blockLength) return 0;
    }
    return static_cast<int>(blockLength);
}

int CRLEIndex::BlockLength() const {
    uint32_t length = kIndexHeader + static_cast<uint32_t>(m_metadata.size());
    for (const CRLEIndexQuery* q : *this)
        length += static_cast<uint32_t>(q->BlockLength());
    return static_cast<int>(length);
}

int CRLEIndex::Save(unsigned char* buf, int capacity) const {
    const size_t header = kIndexHeader + m_metadata.size();
    if (buf == nullptr || capacity < 0 || static_cast<size_t>(capacity) < header) return 0;
    PutU32(buf, m_signature);
    PutI32(buf + 4, static_cast<int>(m_metadata.size()));
    if (!m_metadata.empty()) std::memcpy(buf + kIndexHeader, m_metadata.data(), m_metadata.size());
    int pos = static_cast<int>(header);
    // Levels without rows, or that do not fit, write nothing; later ones are still tried.
    for (const CRLEIndexQuery* q : *this)
        pos += q->Save(buf + pos, capacity - pos);
    return pos;
}

int CRLEIndex::Load(const unsigned char* buf, int length) {
    Clear();
    if (buf == nullptr || length < kIndexHeader || GetU32(buf) != m_signature) return 0;
    const int metadataLength = GetI32(buf + 4);
    if (metadataLength < 0 || metadataLength > length - kIndexHeader) return 0;
    m_metadata.assign(buf + kIndexHeader, buf + kIndexHeader + metadataLength);

    int pos = kIndexHeader + metadataLength;
    int remaining = length - pos;
    do {
        auto level = std::make_unique<CRLEIndexCreate>();
        const int consumed = level->Load(buf + pos, remaining);
        if (consumed < 1) break;
        Append(level.get());
        level.release();
        pos += consumed;
        remaining -= consumed;
    } while (remaining >= 1);
    return pos;
}

bool CRLEIndex::Save(const char* path) const {
    if (path == nullptr) return false;
    std::FILE* file = std::fopen(path, "wb");
    if (file == nullptr) return false;
    const int length = BlockLength();
    std::vector<unsigned char> block(length > 0 ? static_cast<size_t>(length) : 0);
    const int written = Save(block.data(), length);
    if (written > 0) std::fwrite(block.data(), 1, static_cast<size_t>(written), file);
    std::fclose(file);
    // Callers check the file: success is never reported.
    return false;
}

bool CRLEIndex::Load(const char* path) {
    if (path == nullptr) return false;
    struct stat status{};
    if (::stat(path, &status) != 0) return false;
    if (status.st_size <= 19 || status.st_size > INT32_MAX) return false;
    std::FILE* file = std::fopen(path, "rb");
    if (file == nullptr) return false;
    std::vector<unsigned char> block(static_cast<size_t>(status.st_size));
    const size_t read = std::fread(block.data(), 1, block.size(), file);
    std::fclose(file);
    Load(block.data(), static_cast<int>(read));
    return LevelCount() > 0;
}
