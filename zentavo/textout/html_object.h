// An HTML document as an ordered list of named parts, packed into one stream or blob.
//
//   TZentavoHtmlObj page;
//   page.AddPart("body", "<p>Hello</p>");
//   page.SaveToStream(stream);
//
// The parts are opaque bytes. The stream, integers little-endian:
//
//   total      4 bytes, signed   the sum of the lengths of all names and contents
//   per part   1 byte            the length of the name
//              n bytes           the name
//              4 bytes, signed   the length of the content
//              c bytes           the content
//
// An object is used by one thread at a time.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "zentavo/framework/object.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class TField;
class TStream;

// Neither copied nor moved.
class ZENTAVO_API TZentavoHtmlObj : public TObject {
 public:
  TZentavoHtmlObj() = default;
  TZentavoHtmlObj(const TZentavoHtmlObj&) = delete;
  TZentavoHtmlObj& operator=(const TZentavoHtmlObj&) = delete;
  ~TZentavoHtmlObj() override;

  // Of a name of more than 255 bytes only as many are kept as the low 8 bits of its length say. A
  // content beyond 2 GiB raises ERangeError "Range check error".
  void AddPart(std::string_view Name, std::string_view Content);
  // Replaces a part; does nothing for an index at or beyond PartsCount. A negative one raises
  // EListError "List index out of bounds (%d)".
  void SetPart(std::int32_t Index, std::string_view Name, std::string_view Content);
  // Raises EListError "List index out of bounds (%d)".
  void DeletePart(std::int32_t Index);
  // Copies a part; both are empty for an index at or beyond PartsCount. A negative one raises
  // EListError "List index out of bounds (%d)".
  void GetPart(std::int32_t Index, AnsiString& Name, AnsiString& Content) const;
  // The index of the first part with exactly that name, -1 when there is none.
  std::int32_t GetPartByName(std::string_view Name) const;
  std::int32_t PartsCount() const { return static_cast<std::int32_t>(FNames.size()); }
  void ClearParts();

  // Writes from the stream's start. What stands behind the end of the form stays.
  void SaveToStream(TStream& Stream) const;
  // Replaces the parts by those of the stream, from its start. A stream of less than 4 bytes has
  // none.
  //
  // Reading stops once the position reaches the total, although the total does not count the length
  // fields: short parts at the end are not read back, which is how the form has always been read.
  // It stops too, with the parts before, at a part that is cut off or has a negative length.
  void LoadFromStream(TStream& Stream);
  // Puts the form into a field of a data set in edit or insert mode. Raises what the field's
  // LoadFromStream raises.
  void SaveDocToBlob(TField& AFld) const;

 private:
  void CheckIndex(std::int32_t index) const;
  bool LoadPart(TStream& stream, std::int64_t stream_size);

  std::vector<AnsiString> FNames;
  std::vector<AnsiString> FContents;
};

}  // namespace zentavo
