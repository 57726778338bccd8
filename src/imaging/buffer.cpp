#include <kexlib/imaging/buffer.h>

#include <fstream>
#include <new>
#include <string_view>
#include <vector>

kexBuffer::kexBuffer() = default;

kexBuffer::~kexBuffer() = default;

std::shared_ptr<kexBuffer> kexBuffer_create() { return std::make_shared<kexBuffer>(); }

std::shared_ptr<kexBuffer> kexBuffer::create_from_archive(CArchive& ar) {
  std::shared_ptr<kexBuffer> buffer = kexBuffer_create();
  buffer->serialize(ar);
  return buffer;
}

void kexBuffer::write(const void* data, unsigned __int64 size) {
  stream_.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void kexBuffer::close() { closed_.exchange(true); }

bool kexBuffer::is_closed() const { return closed_; }

bool kexBuffer::fail() const { return stream_.fail(); }

unsigned __int64 kexBuffer::size() const { return closed_ ? stream_.view().size() : 0; }

void kexBuffer::write_to_file(const CString& path) const try {
  wait_closed();
  const std::string_view bytes = stream_.view();
  std::ofstream file(path.GetString(), std::ios::binary | std::ios::trunc);  // allocates a buffer
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
} catch (const std::bad_alloc&) {
}

void kexBuffer::serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    wait_closed();
    const std::string_view bytes = stream_.view();
    const auto length = static_cast<DWORD>(bytes.size());
    ar << length;
    ar.Write(bytes.data(), length);
    return;
  }
  DWORD length = 0;
  ar >> length;
  std::vector<char> bytes(length);  // the zeros stay if the archive ends early
  ar.Read(bytes.data(), length);
  write(bytes.data(), length);
  close();
}

bool kexBuffer::wait_closed() const {
  constexpr DWORD milliseconds = 10;
  while (!closed_) Sleep(milliseconds);
  return closed_;
}
