#include "platform/keychain/Keychain.h"

#include <algorithm>
#include <optional>

#include "platform/plist/PropertyList.h"
#include "platform/plist/PropertyListFile.h"

namespace quillet::platform {
namespace {

constexpr const char* kGenericPasswordClass = "genp";
constexpr const char* kKeyClass = "keys";

Value toValue(const KeychainItem& item) {
  return Value(Value::Dictionary{
      {"class", Value(item.itemClass == KeychainItemClass::Key ? kKeyClass : kGenericPasswordClass)},
      {"service", Value(item.service)},
      {"account", Value(item.account)},
      {"generic", Value::bytes(item.generic)},
      {"applicationTag", Value::bytes(item.applicationTag)},
      {"attributes", Value(item.attributes)},
      {"data", Value::bytes(item.data)},
  });
}

// An item as stored, or nullopt when the record is not one.
std::optional<KeychainItem> fromValue(const Value& record) {
  const Value& itemClass = record["class"];
  const Value& service = record["service"];
  const Value& account = record["account"];
  const Value& generic = record["generic"];
  const Value& tag = record["applicationTag"];
  const Value& attributes = record["attributes"];
  const Value& data = record["data"];
  if (!itemClass.isString() || !service.isString() || !account.isString() || !generic.isBytes() || !tag.isBytes() ||
      !attributes.isDictionary() || !data.isBytes())
    return std::nullopt;
  KeychainItem item;
  if (itemClass.string() == kKeyClass)
    item.itemClass = KeychainItemClass::Key;
  else if (itemClass.string() != kGenericPasswordClass)
    return std::nullopt;
  item.service = service.string();
  item.account = account.string();
  item.generic = generic.bytesData();
  item.applicationTag = tag.bytesData();
  item.attributes = attributes.dictionaryItems();
  item.data = data.bytesData();
  return item;
}

const Value& keyClassOf(const KeychainItem& item) {
  static const Value none;
  auto it = item.attributes.find("keyClass");
  return it == item.attributes.end() ? none : it->second;
}

bool samePrimaryKey(const KeychainItem& a, const KeychainItem& b) {
  if (a.itemClass != b.itemClass) return false;
  if (a.itemClass == KeychainItemClass::GenericPassword) return a.service == b.service && a.account == b.account;
  return a.applicationTag == b.applicationTag && keyClassOf(a) == keyClassOf(b);
}

}  // namespace

Keychain::Keychain(const FileSystem& fileSystem) : path_(fileSystem.keychainDirectory() / "keychain.plist") { load(); }

Keychain& Keychain::standard() {
  static Keychain instance(*FileSystem::standard());
  return instance;
}

void Keychain::load() {
  auto loaded = PropertyListFile::load(path_, "keychain");
  if (!loaded) return;
  const Value& stored = *loaded;
  std::vector<KeychainItem> items;
  bool damaged = !stored["items"].isArray();
  if (!damaged) {
    for (const auto& record : stored["items"].arrayItems()) {
      auto item = fromValue(record);
      if (!item) {
        damaged = true;
        break;
      }
      items.push_back(std::move(*item));
    }
  }
  if (damaged) {
    PropertyListFile::reportDamaged(path_, "keychain");
    return;
  }
  items_ = std::move(items);
}

bool Keychain::persistLocked() const {
  Value::Array records;
  records.reserve(items_.size());
  for (const auto& item : items_) records.push_back(toValue(item));
  Value stored(Value::Dictionary{{"version", Value(1)}, {"items", Value(std::move(records))}});
  return PropertyListFile::save(path_, stored, "keychain", 0600);
}

int32_t Keychain::copyMatching(const KeychainQuery& query, MatchLimit limit, std::vector<KeychainItem>* results) const {
  std::lock_guard lock(mutex_);
  if (results) results->clear();
  bool found = false;
  for (const auto& item : items_) {
    if (!query.matches(item)) continue;
    found = true;
    if (results) results->push_back(item);
    if (limit == MatchLimit::One) break;
  }
  return found ? statusSuccess : statusItemNotFound;
}

int32_t Keychain::add(const KeychainItem& item) {
  if (!item.attributes.empty() && !PropertyList::isPropertyList(Value(item.attributes))) return statusParam;
  if (!PropertyList::isPropertyList(Value(item.service)) || !PropertyList::isPropertyList(Value(item.account)))
    return statusParam;
  std::lock_guard lock(mutex_);
  for (const auto& existing : items_)
    if (samePrimaryKey(existing, item)) return statusDuplicateItem;
  items_.push_back(item);
  if (persistLocked()) return statusSuccess;
  items_.pop_back();
  return statusIO;
}

int32_t Keychain::deleteMatching(const KeychainQuery& query) {
  std::lock_guard lock(mutex_);
  std::vector<KeychainItem> kept;
  for (const auto& item : items_)
    if (!query.matches(item)) kept.push_back(item);
  if (kept.size() == items_.size()) return statusItemNotFound;
  std::swap(kept, items_);
  if (persistLocked()) return statusSuccess;
  std::swap(kept, items_);
  return statusIO;
}

}  // namespace quillet::platform
