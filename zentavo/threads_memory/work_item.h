// Units of work for the process-wide pool of threads.
//
//   class Import : public TXWorkItem {
//     void Execute() override { ... }
//   };
//   ExecuteInThreadPool(std::make_unique<Import>());
//
// An exception that leaves Execute is swallowed without a report; CompletedOK then stays false.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "zentavo/platform/export.h"

namespace zentavo {

class TXThreadPool;

// One unit of work. It runs once a start, and is started again only after it has run. The thread
// that ran it destroys it, unless its start time is not 0 then: so an item says that its owner
// keeps it. The last access to a kept item is the setting of CompletedOK. Neither copied nor moved.
class ZENTAVO_API TXWorkItem {
 public:
  TXWorkItem() = default;
  TXWorkItem(const TXWorkItem&) = delete;
  TXWorkItem& operator=(const TXWorkItem&) = delete;
  virtual ~TXWorkItem();

  virtual void Execute() = 0;
  // Runs the item on the process-wide pool, as many at once as there are. The item is destroyed by
  // the thread that runs it unless its start time is not 0, so it comes from `new` and nobody else
  // owns it. Raises as ExecuteInThreadPool; the item is the caller's then.
  virtual void Run();

  // The pool that started the item, null when none did.
  TXThreadPool* Pool() const { return FPool; }
  // For a delayed item the tick count at which it is due, 0 once it runs.
  std::uint32_t StartTime() const { return FStartTime; }
  // Not 0: the item stays its owner's after it has run. To be set before the start or in Execute.
  void SetStartTime(std::uint32_t value) { FStartTime = value; }

 private:
  friend class TXThreadPool;

  // Runs the item and then, one by one, what its pool has waiting.
  static void Work(void* item);
  static TXWorkItem* RunOne(TXWorkItem& item) noexcept;
  bool Completes() noexcept;

  TXThreadPool* FPool = nullptr;
  std::uint32_t FStartTime = 0;

 public:
  // Set after Execute has returned without an exception.
  std::atomic<bool> CompletedOK{false};
};

// Runs `Item` on the process-wide pool, which destroys it as above. Raises Exception "Operation
// Failed to start in Windows ThreadPool" when the system refuses; the item is destroyed then.
ZENTAVO_API void ExecuteInThreadPool(std::unique_ptr<TXWorkItem> Item);

}  // namespace zentavo
