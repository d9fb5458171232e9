#include "platform/contacts/change_feed.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/notification.h"

#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace contacts {
namespace {

bool isMainThread() { return syscall(SYS_gettid) == getpid(); }

void addId(NSMutableArray& ids, const StoredCard& card) {
  if (!ids) ids = NSMutableArray::array();
  ids.addObject(makeString(card.uniqueId()));
}

// Nil when nothing changed that anybody could notice: a card that only moved to another file is the same.
NSDictionary userInfoFor(const std::vector<CardChange>& changes) {
  NSMutableArray inserted;
  NSMutableArray updated;
  NSMutableArray deleted;
  for (const CardChange& change : changes) {
    if (!change.after) {
      addId(deleted, *change.before);
    } else if (!change.before || change.before->database == nullptr) {
      addId(inserted, *change.after);
    } else if (change.before->hash != change.after->hash) {
      addId(updated, *change.after);
    }
  }
  if (!inserted && !updated && !deleted) return nullptr;
  NSMutableDictionary userInfo = NSMutableDictionary::dictionary();
  if (inserted) userInfo.setObject(inserted, kABInsertedRecords);
  if (updated) userInfo.setObject(updated, kABUpdatedRecords);
  if (deleted) userInfo.setObject(deleted, kABDeletedRecords);
  return userInfo;
}

}  // namespace

ChangeFeed& changeFeed() {
  static auto* feed = new ChangeFeed;
  return *feed;
}

void ChangeFeed::watch(Database& database) {
  const std::scoped_lock guard(lock_);
  if (watch_) return;
  wakeSource_.reset();
  wake_ = FileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (wake_.isOpen()) wakeSource_ = std::make_unique<RunLoopSource>(wake_.number(), [this] { tell(); });
  watch_ = std::make_unique<FolderWatch>(database.path(), [this, &database](const std::set<std::string>* names) {
    add(database.refresh(names), Origin::kOthers);
  });
}

void ChangeFeed::setShared(AddressBookObject& book) {
  constexpr std::size_t kEnough = 8;
  const std::scoped_lock guard(lock_);
  shared_ = &book;
  batches_.reserve(kEnough);  // so that hardly ever one is lost where memory is short
}

void ChangeFeed::add(std::vector<CardChange> changes, Origin origin, const AddressBookObject* saver) {
  if (changes.empty()) return;
  {
    const std::scoped_lock guard(lock_);
    if (shared_ == nullptr) return;
    batches_.push_back({std::move(changes), origin, saver == shared_});
  }
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wake_.number(), &one, sizeof one);
  if (isMainThread()) tell();
}

// An observer may save in its turn: what that adds is told at once, after what was before it.
void ChangeFeed::tell() {
  while (true) {
    const AutoreleasePool pool;
    Batch batch;
    {
      const std::scoped_lock guard(lock_);
      if (batches_.empty()) {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t taken = read(wake_.number(), &count, sizeof count);
        return;
      }
      batch = std::move(batches_.front());
      batches_.erase(batches_.begin());
    }
    tell(batch);
  }
}

void ChangeFeed::tell(Batch& batch) {
  NSDictionary userInfo;
  try {
    if (!batch.isKnown) shared_->absorb(batch.changes);
    userInfo = userInfoFor(batch.changes);
  } catch (const std::bad_alloc&) {
    const std::scoped_lock guard(lock_);
    batches_.insert(batches_.begin(), std::move(batch));
    throw;
  }
  if (!userInfo) return;
  const NSString name =
      batch.origin == Origin::kThisProcess ? kABDatabaseChangedNotification : kABDatabaseChangedExternallyNotification;
  NSNotificationCenter::defaultCenter().postNotification(name, NSObject(shared_), userInfo);
}

}  // namespace contacts
