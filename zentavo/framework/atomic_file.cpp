#include "zentavo/framework/atomic_file.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/file_names.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

namespace {

constexpr int kNameAttempts = 16;

AtomicFileSteps& SystemSteps() {
  static AtomicFileSteps steps;
  return steps;
}

// A name of its own in the folder of `target`, short, so that a long name of the file is no
// obstacle.
String NameBeside(StringView target) {
  std::random_device random;
  const std::uint64_t number = std::uint64_t{random()} << 32 | random();
  return ExtractFilePath(target) + u".zentavo-" + IntToHex(number, 16) + u".tmp";
}

// Tries again while another process may be in the way, for two seconds in all.
template <typename Step>
platform::SystemError Patiently(Step step) {
  constexpr int kTries = 200;
  constexpr std::chrono::milliseconds kPause(10);
  platform::SystemError error = step();
  for (int i = 1; i < kTries && platform::MayPass(error); ++i) {
    std::this_thread::sleep_for(kPause);
    error = step();
  }
  return error;
}

template <typename Error>
[[noreturn]] void RaiseFileError(StringView what, StringView name, platform::SystemError error) {
  String text(what);
  text.append(u" \"").append(name).append(u"\". ");
  throw Error(text.append(platform::SystemErrorText(error)));
}

constexpr StringView kCannotRead = u"Cannot read file";
constexpr StringView kCannotWrite = u"Cannot write file";

// Goes on to where nothing more comes: the size of a device says nothing.
platform::SystemError ReadToEnd(platform::File& file, AnsiString& bytes) {
  constexpr std::size_t kPiece = 4096;
  std::int64_t size = 0;
  if (const platform::SystemError error = file.Size(size)) return error;
  std::size_t start = 0;
  for (auto room = static_cast<std::size_t>(size) + 1;; room = kPiece) {
    bytes.resize(start + room);
    std::size_t done = 0;
    const std::span piece(bytes.data() + start, room);
    const platform::SystemError error = file.Read(std::as_writable_bytes(piece), done);
    start += done;
    if (done == room && error == 0) continue;
    bytes.resize(start);
    return error;
  }
}

}  // namespace

AtomicFileSteps::~AtomicFileSteps() = default;

platform::SystemError AtomicFileSteps::CheckWritable(StringView path) {
  return Patiently([path] {
    platform::File file;
    return file.Open(path, platform::FileAccess::kWrite, platform::FileSharing::kReadWrite,
                     platform::FileCreation::kOpenExisting);
  });
}

platform::SystemError AtomicFileSteps::Create(platform::File& file, StringView path,
                                              platform::FileCreation creation) {
  return file.Open(path, platform::FileAccess::kReadWrite, platform::FileSharing::kNone, creation);
}

platform::SystemError AtomicFileSteps::Write(platform::File& file, std::span<const std::byte> bytes,
                                             std::size_t& done) {
  return file.Write(bytes, done);
}

platform::SystemError AtomicFileSteps::Replace(StringView from, StringView to) {
  return Patiently([&] { return platform::ReplaceFileBy(from, to); });
}

TAtomicFileStream::TAtomicFileStream(StringView file_name)
    : TAtomicFileStream(file_name, SystemSteps()) {}

TAtomicFileStream::TAtomicFileStream(StringView file_name, AtomicFileSteps& steps)
    : steps_(steps), name_(file_name), target_(file_name) {
  if (platform::IsDevice(file_name)) {
    const platform::SystemError error =
        file_.Open(file_name, platform::FileAccess::kWrite, platform::FileSharing::kReadWrite,
                   platform::FileCreation::kOpenExisting);
    if (error != 0) RaiseNotCreated(error);
  } else {
    target_ = platform::ResolveLink(file_name);
    CreateBeside();
  }
}

TAtomicFileStream::~TAtomicFileStream() {
  Discard();
}

void TAtomicFileStream::CreateBeside() {
  const bool is_new = !FileExists(target_);
  if (const platform::SystemError error = is_new ? 0 : steps_.CheckWritable(target_)) {
    RaiseNotCreated(error);
  }
  // Nobody reads the new content of a file that is private before the file's mode is on it.
  const auto creation =
      is_new ? platform::FileCreation::kCreateNew : platform::FileCreation::kCreatePrivate;
  platform::SystemError error = 0;
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    const String name = NameBeside(target_);
    error = steps_.Create(file_, name, creation);
    if (error == 0) {
      beside_ = name;
      return;
    }
    if (!FileExists(name)) break;
  }
  RaiseNotCreated(error);
}

void TAtomicFileStream::Discard() noexcept {
  file_.Close();
  if (!beside_.empty()) platform::RemoveFile(beside_);
  beside_.clear();
}

void TAtomicFileStream::RaiseNotCreated(platform::SystemError error) const {
  RaiseFileError<EFCreateError>(u"Cannot create file", name_, error);
}

void TAtomicFileStream::Check(platform::SystemError error, StringView what) const {
  if (error == 0) return;
  if (what == kCannotRead) RaiseFileError<EReadError>(what, name_, error);
  RaiseFileError<EWriteError>(what, name_, error);
}

std::int64_t TAtomicFileStream::Read(void* buffer, std::int64_t count) {
  if (count <= 0) return 0;
  std::size_t done = 0;
  Check(file_.Read({static_cast<std::byte*>(buffer), static_cast<std::size_t>(count)}, done),
        kCannotRead);
  return static_cast<std::int64_t>(done);
}

std::int64_t TAtomicFileStream::Write(const void* buffer, std::int64_t count) {
  if (count <= 0) return 0;
  std::size_t done = 0;
  const std::span bytes(static_cast<const std::byte*>(buffer), static_cast<std::size_t>(count));
  Check(steps_.Write(file_, bytes, done), kCannotWrite);
  return static_cast<std::int64_t>(done);
}

std::int64_t TAtomicFileStream::Seek(std::int64_t offset, TSeekOrigin origin) {
  std::int64_t base = 0;
  if (origin == TSeekOrigin::soEnd) Check(file_.Size(base), kCannotRead);
  if (origin == TSeekOrigin::soCurrent) {
    Check(file_.Seek(0, platform::SeekOrigin::kCurrent, base), kCannotRead);
  }
  const std::int64_t place = std::max(offset, -base) + base;
  Check(file_.Seek(place, platform::SeekOrigin::kBegin, base), kCannotRead);
  return base;
}

void TAtomicFileStream::SetSize(std::int64_t size) {
  SetPosition(size);
  Check(file_.TruncateHere(), kCannotWrite);
}

void TAtomicFileStream::Commit() {
  // Of the streams without a file beside, one over a device is open, one committed before is not.
  if (beside_.empty() && !file_.IsOpen()) Check(file_.Flush(), kCannotWrite);
  file_.Close();
  if (beside_.empty()) return;
  if (const platform::SystemError error = steps_.Replace(beside_, target_)) {
    Discard();
    RaiseNotCreated(error);
  }
  beside_.clear();
}

void SaveFileAtomically(StringView file_name, std::span<const std::byte> bytes) {
  TAtomicFileStream file(file_name);
  file.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  file.Commit();
}

AnsiString LoadFileWhole(StringView file_name) {
  platform::File file;
  const platform::SystemError refused = Patiently([&] {
    return file.Open(file_name, platform::FileAccess::kRead, platform::FileSharing::kRead,
                     platform::FileCreation::kOpenExisting);
  });
  if (refused != 0) RaiseFileError<EFOpenError>(u"Cannot open file", file_name, refused);
  AnsiString bytes;
  if (const platform::SystemError error = ReadToEnd(file, bytes)) {
    RaiseFileError<EReadError>(kCannotRead, file_name, error);
  }
  return bytes;
}

}  // namespace zentavo
