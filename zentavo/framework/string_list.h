// An ordered list of strings, each with one attached pointer-sized value.
//
//   TStringList list;
//   list.SetSorted(true);
//   list.Add(u"beta");
//   list.Add(u"Alpha");
//   list.Text();  // "Alpha", line break, "beta", line break
//
// A list is used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "zentavo/framework/object.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/text_encoding.h"

namespace zentavo {

class TStream;

enum class TDuplicates { dupIgnore, dupAccept, dupError };

// The line break of text files on this platform: CR LF on Windows, LF on Linux.
ZENTAVO_API StringView PlatformLineBreak();

// Neither copied (see Assign) nor moved. A text handed in may be one of the list's own. An index
// out of range raises EStringListError "List index out of bounds (%d)".
class ZENTAVO_API TStringList : public TObject {
 public:
  // The value attached to a string: a number or the address of an object, as the caller uses it.
  using Attached = std::uintptr_t;
  // Orders two entries by their indices.
  using CompareFunction =
      std::function<int(const TStringList& list, std::int32_t index1, std::int32_t index2)>;
  using NotifyEvent = std::function<void(TStringList& sender)>;

  TStringList();
  TStringList(const TStringList&) = delete;
  TStringList& operator=(const TStringList&) = delete;
  ~TStringList() override;

  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  std::int32_t Capacity() const { return static_cast<std::int32_t>(items_.capacity()); }
  // Raises EStringListError "List capacity out of bounds (%d)" for a negative one or one below
  // Count.
  void SetCapacity(std::int32_t capacity);

  const String& Strings(std::int32_t index) const;
  // Replaces a string in its place. Raises EStringListError "Operation not allowed on sorted list".
  void SetString(std::int32_t index, StringView text);
  const String& operator[](std::int32_t index) const { return Strings(index); }

  // The attached value, as a number or as the object whose address it is.
  Attached Value(std::int32_t index) const;
  void SetValue(std::int32_t index, Attached value);
  TObject* Objects(std::int32_t index) const;
  // Attaches an object that the list destroys with the entry. Raises EStringListError "String list
  // does not own objects" unless it has OwnsObjects; AddObject likewise.
  void SetObject(std::int32_t index, std::unique_ptr<TObject> object);

  // Return the new entry's index. A sorted list puts it in order and treats an equal one as
  // Duplicates says: ignored (the index of the one that is there comes back; its value stays),
  // accepted behind those that are there, or EStringListError "String list does not allow
  // duplicates". An object that is not added is destroyed, a value stays the caller's.
  std::int32_t Add(StringView text);
  std::int32_t AddValue(StringView text, Attached value);
  std::int32_t AddObject(StringView text, std::unique_ptr<TObject> object);
  // Insert, Exchange, Move and CustomSort raise EStringListError "Operation not allowed on sorted
  // list" on a sorted list.
  void Insert(std::int32_t index, StringView text, Attached value = 0);
  void Delete(std::int32_t index);
  void Exchange(std::int32_t index1, std::int32_t index2);
  void Move(std::int32_t from, std::int32_t to);
  void Clear();

  // Binary search; the list must be sorted: true with the index of the first equal entry, else
  // false with the place where `text` belongs.
  bool Find(StringView text, std::int32_t& index) const;
  // The index of the first equal string, -1 when there is none. A list that is not sorted is
  // searched from its start.
  virtual std::int32_t IndexOf(StringView text) const;
  std::int32_t IndexOfValue(Attached value) const;

  // Entries of the form NAME=VALUE. Names compare as the list's strings do.
  virtual std::int32_t IndexOfName(StringView name) const;
  String Names(std::int32_t index) const;  // empty when the entry has no separator
  String Values(StringView name) const;    // empty when there is no such entry
  // Changes or adds an entry; the empty value deletes it.
  void SetValueOf(StringView name, StringView value);
  String ValueFromIndex(std::int32_t index) const;  // empty when the entry has no separator
  // Changes the value of one entry; the empty value deletes it.
  void SetValueFromIndex(std::int32_t index, StringView value);

  // All strings, each followed by LineBreak. Setting breaks at CR LF, CR or LF; a break at the very
  // end adds no empty line.
  String Text() const;
  void SetText(StringView text);
  // All strings between Delimiters; those that hold a delimiter, a quote, a blank or a control
  // character are quoted (strict: a delimiter or a quote), and so is an empty one that would be
  // lost. With QuoteChar 0 nothing is quoted. SetDelimitedText reads the strings back.
  String DelimitedText() const;
  // Strict: only the delimiter separates and blanks belong to the item. Otherwise blanks and
  // control characters separate too. A quoted item loses its quotes, doubled quotes in it become
  // one; a quote that is not closed reaches to the end. Strict, what stands behind the closing
  // quote belongs to the item; otherwise it is the next item. "a," has two items, the empty text
  // none.
  void SetDelimitedText(StringView text);
  String CommaText() const;  // delimited by "," and quoted by '"', not strict
  void SetCommaText(StringView text);

  // Takes strings, values and options, except OwnsObjects: this list then owns nothing.
  void Assign(const TStringList& source);
  // Adds strings and values; a list that owns objects takes the strings alone. A sorted list treats
  // duplicates as Add does; on an error it is left as it was.
  void AddStrings(const TStringList& source);
  bool Equals(const TStringList& other) const;  // the same strings in the same order
  // Both keep the order of equal entries.
  void Sort();
  void CustomSort(const CompareFunction& compare);

  // Read the text from the stream's position to its end, as UTF-8, UTF-16 LE or BE by its
  // byte-order mark, else in the system code page. Saving writes what loading found last, mark
  // included; a list that was never loaded is written in the system code page.
  void LoadFromFile(StringView file_name);
  void LoadFromStream(TStream& stream);
  void SaveToFile(StringView file_name) const;
  void SaveToStream(TStream& stream) const;

  // The first BeginUpdate sends OnChanging, the last EndUpdate OnChange, and nothing between them.
  void BeginUpdate();
  void EndUpdate();

  bool Sorted() const { return sorted_; }
  void SetSorted(bool sorted);
  bool CaseSensitive() const { return case_sensitive_; }
  void SetCaseSensitive(bool case_sensitive);
  TDuplicates Duplicates() const { return duplicates_; }
  void SetDuplicates(TDuplicates duplicates) { duplicates_ = duplicates; }
  // Whether attached values are addresses of objects that the list destroys. Off at first.
  bool OwnsObjects() const { return owns_objects_; }
  void SetOwnsObjects(bool owns) { owns_objects_ = owns; }
  char16_t NameValueSeparator() const { return name_value_separator_; }
  void SetNameValueSeparator(char16_t unit);
  char16_t Delimiter() const { return delimiter_; }
  void SetDelimiter(char16_t unit) { delimiter_ = unit; }
  bool StrictDelimiter() const { return strict_delimiter_; }
  void SetStrictDelimiter(bool strict) { strict_delimiter_ = strict; }
  char16_t QuoteChar() const { return quote_char_; }
  void SetQuoteChar(char16_t unit) { quote_char_ = unit; }
  const String& LineBreak() const { return line_break_; }
  void SetLineBreak(StringView text) { line_break_ = text; }
  void SetOnChanging(NotifyEvent event) { on_changing_ = std::move(event); }
  void SetOnChange(NotifyEvent event) { on_change_ = std::move(event); }

 protected:
  // Called before and after every change of the entries, updates in progress or not.
  virtual void Changing();
  virtual void Changed();
  // Called in place of Changed, and calling it, for an entry that was added at the end and for one
  // whose string was replaced.
  virtual void Appended(std::int32_t index);
  virtual void Replaced(std::int32_t index, StringView old_text);
  // Called when the entries' texts may have moved in memory, and when they compare by other rules,
  // though no entry has changed.
  virtual void Rearranged();
  bool HasChangeHandler() const { return on_change_ != nullptr; }
  // Where the entries are kept: texts move with it, and when their own entry changes.
  const void* Storage() const { return items_.data(); }

 private:
  struct Item {
    String text;
    Attached value = 0;
  };

  struct Delimiters {
    char16_t delimiter;
    char16_t quote;
    bool strict;
  };

  void CheckIndex(std::int32_t index) const;
  void CheckNotSorted() const;
  void CheckOwnsObjects() const;
  // Below, equal to or above 0, by CaseSensitive.
  int CompareStrings(StringView a, StringView b) const;
  // The first entry that is not below `text`, and the first that is above it.
  std::int32_t LowerBound(StringView text) const;
  std::int32_t UpperBound(StringView text) const;
  bool EqualsAt(std::int32_t index, StringView text) const;

  // Where `text` goes, or the equal entry that keeps it out, and whether it goes in.
  std::pair<std::int32_t, bool> PlaceFor(StringView text) const;
  void InsertItem(std::int32_t index, Item item);
  void Inserted(std::int32_t index);
  // `added` in the order and without the duplicates that the options ask for.
  std::vector<Item> Admitted(std::vector<Item> added, const std::vector<Item>& present) const;
  void ReplaceItems(std::vector<Item> items);
  void SortItems(std::vector<Item>& items) const;
  void SortAll();
  void Release(Attached value) const;
  void ReleaseAll(const std::vector<Item>& items) const;

  String Delimited(const Delimiters& rules) const;
  void SetDelimited(StringView text, const Delimiters& rules);

  std::vector<Item> items_;
  bool case_sensitive_ = false;
  bool sorted_ = false;
  bool owns_objects_ = false;
  bool strict_delimiter_ = false;
  char16_t name_value_separator_ = u'=';
  char16_t delimiter_ = u',';
  char16_t quote_char_ = u'"';
  TDuplicates duplicates_ = TDuplicates::dupIgnore;
  std::int32_t update_count_ = 0;
  String line_break_;
  NotifyEvent on_changing_;
  NotifyEvent on_change_;
  TEncoding encoding_ = TEncoding::System();
};

}  // namespace zentavo
