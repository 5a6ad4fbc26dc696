// Files that are replaced as a whole: whoever opens the file, at whatever moment, and whatever
// happens meanwhile, finds all of the old content or all of the new.
//
//   TAtomicFileStream file(u"settings.ini");
//   file.WriteBuffer(bytes.data(), size);
//   file.Commit();
//
// What is written goes to a file of its own in the same folder, which takes the old file's place
// with Commit: written, flushed to the disk, renamed, the folder flushed. The old file's
// permissions and, where the system allows it, its owner pass to the new one; where the name is a
// symbolic link, the file that it leads to is replaced. Several processes may save at once: one of
// the contents stays. On Windows a file that another process has open, or replaces, is tried for
// two seconds before that is an error. A device or a pipe is written to as it is.
#pragma once

#include <cstddef>
#include <span>

#include "zentavo/framework/stream.h"
#include "zentavo/framework/text.h"
#include "zentavo/platform/files.h"

namespace zentavo {

// What saving asks of the system, in this order. Each returns 0 or the system's error code. A test
// derives from it to have one of them fail.
class ZENTAVO_API AtomicFileSteps {
 public:
  virtual ~AtomicFileSteps();

  // Refuses a file that exists and may not be written.
  virtual platform::SystemError CheckWritable(StringView path);
  virtual platform::SystemError Create(platform::File& file, StringView path,
                                       platform::FileCreation creation);
  virtual platform::SystemError Write(platform::File& file, std::span<const std::byte> bytes,
                                      std::size_t& done);
  // Flushes the new file, then puts it in place.
  virtual platform::SystemError Replace(StringView from, StringView to);
};

// A stream into the file that is to be. Destroyed without a Commit that succeeded, it leaves the
// old file as it was and nothing beside it.
class ZENTAVO_API TAtomicFileStream : public TStream {
 public:
  // Raises EFCreateError "Cannot create file \"%s\". %s" when the folder or the file that is there
  // may not be written. `steps` outlives the stream.
  explicit TAtomicFileStream(StringView file_name);
  TAtomicFileStream(StringView file_name, AtomicFileSteps& steps);
  ~TAtomicFileStream() override;

  // The stream reads back what was written to it. Write raises EWriteError with the name and the
  // system's text when the system refuses; Read, Seek and Size raise EReadError.
  std::int64_t Read(void* buffer, std::int64_t count) override;
  std::int64_t Write(const void* buffer, std::int64_t count) override;
  std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
  void SetSize(std::int64_t size) override;

  // Puts what was written in the file's place; the stream is closed then, whether that succeeded or
  // not, and refuses everything. Raises EFCreateError when the bytes do not reach the disk or the
  // file may not be replaced.
  void Commit();

 private:
  void CreateBeside();
  void Discard() noexcept;
  void Check(platform::SystemError error, StringView what) const;
  [[noreturn]] void RaiseNotCreated(platform::SystemError error) const;

  AtomicFileSteps& steps_;
  String name_;    // as the caller knows it, for errors
  String target_;  // the file behind the name
  String beside_;  // the file that is written; empty when the target itself is
  platform::File file_;
};

// Replaces the content of `file_name` by `bytes`. Raises what TAtomicFileStream raises.
ZENTAVO_API void SaveFileAtomically(StringView file_name, std::span<const std::byte> bytes);

// Returns what is in a file that others may replace at this moment. Raises EFOpenError "Cannot open
// file \"%s\". %s", also while another process keeps it open for writing, and EReadError.
ZENTAVO_API AnsiString LoadFileWhole(StringView file_name);

}  // namespace zentavo
