#include <kexlib/imaging/buffer.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::array<char, std::size_t{16} * 1024> zeros{};

// Calls write(bytes, count) until `count` zeros are written or it returns false.
template <class Write>
void write_zeros(unsigned __int64 count, Write write) {
  while (count > 0) {
    const auto piece = static_cast<UINT>(std::min<unsigned __int64>(count, zeros.size()));
    if (!write(zeros.data(), piece)) return;
    count -= piece;
  }
}

// Up to `length` bytes of an archive. The memory follows what it delivers, not what it promises.
std::vector<char> delivered(CArchive& ar, DWORD length) {
  constexpr size_t first_piece = size_t{64} * 1024;
  std::vector<char> bytes;
  for (size_t got = 0;;) {
    bytes.resize(std::min<size_t>(length, std::max(first_piece, got * 2)));
    const size_t asked = bytes.size() - got;
    const UINT read = ar.Read(bytes.data() + got, static_cast<UINT>(asked));
    got += read;
    if (read < asked || got == length) {
      bytes.resize(got);
      return bytes;
    }
  }
}

}  // namespace

kexBuffer::kexBuffer() = default;

kexBuffer::~kexBuffer() = default;

std::shared_ptr<kexBuffer> kexBuffer_create() { return std::make_shared<kexBuffer>(); }

std::shared_ptr<kexBuffer> kexBuffer::create_from_archive(CArchive& ar) {
  std::shared_ptr<kexBuffer> buffer = kexBuffer_create();
  buffer->serialize(ar);
  return buffer;
}

void kexBuffer::write(const void* data, unsigned __int64 size) {
  if (size == 0) return;
  write_zeros(std::exchange(missing_, 0),
              [this](const char* bytes, UINT count) -> bool { return static_cast<bool>(stream_.write(bytes, count)); });
  stream_.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void kexBuffer::close() { closed_.exchange(true); }

bool kexBuffer::is_closed() const { return closed_; }

bool kexBuffer::fail() const { return stream_.fail(); }

unsigned __int64 kexBuffer::size() const { return closed_ ? stream_.view().size() + missing_ : 0; }

void kexBuffer::write_to_file(const CString& path) const try {
  wait_closed();
  const std::string_view bytes = stream_.view();
  std::ofstream file(path.GetString(), std::ios::binary | std::ios::trunc);  // allocates a buffer
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (missing_ == 0) return;
  file.seekp(static_cast<std::streamoff>(missing_ - 1), std::ios::cur);  // the system fills a gap with zeros
  file.put('\0');
} catch (const std::bad_alloc&) {
}

void kexBuffer::serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    wait_closed();
    const std::string_view bytes = stream_.view();
    const auto length = static_cast<DWORD>(size());
    const auto held = static_cast<DWORD>(std::min<unsigned __int64>(length, bytes.size()));
    ar << length;
    ar.Write(bytes.data(), held);
    write_zeros(length - held, [&ar](const char* piece, UINT count) {
      ar.Write(piece, count);
      return true;
    });
    return;
  }
  DWORD length = 0;
  ar >> length;
  const std::vector<char> bytes = delivered(ar, length);
  write(bytes.data(), bytes.size());
  missing_ += length - bytes.size();
  close();
}

bool kexBuffer::wait_closed() const {
  constexpr DWORD milliseconds = 10;
  while (!closed_) Sleep(milliseconds);
  return closed_;
}
