#include "zentavo/json/object.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <map>
#include <random>

#include "zentavo/framework/number_text.h"
#include "zentavo/framework/stream.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/framework/variant.h"
#include "zentavo/json/array.h"
#include "zentavo/json/text_form.h"

namespace zentavo {
namespace {

class HostValue : public TZAbstractObject {};

String Numbered(StringView name, std::int32_t number) {
  String text(name);
  AppendInt(text, number);
  return text;
}

template <typename E>
AnsiString MessageOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const E& error) {
    return ToUtf8(error.Message());
  }
  return "nothing raised";
}

TEST(TJSONObject, PutKeepsOrderAndReplacesInPlace) {
  TJSONObject object;
  object.put(u"b", 1).put(u"a", 2.5).put(u"c", true).put(u"d", u"x y").put(u"B", u"new");
  object.put(u"e", TJSONObject::Null()).put(u"f", std::make_unique<TJSONArray>());
  EXPECT_EQ(object.toString(),
            uR"({"b":"new","a":2.500000,"c":true,"d":"x\u0020y","e":null,"f":[]})");
  object.put(u"zz", std::unique_ptr<TZAbstractObject>());
  object.put(u"A", std::unique_ptr<TZAbstractObject>());
  EXPECT_FALSE(object.has(u"a"));
  EXPECT_EQ(object.length(), 5);
  EXPECT_EQ(object.names().toString(), uR"(["b","c","d","e","f"])");
  EXPECT_TRUE(object.isNull(u"e"));
  EXPECT_TRUE(object.isNull(u"none"));
  EXPECT_FALSE(object.isNull(u"b"));
}

TEST(TJSONObject, TypedReadings) {
  TJSONObject object(
      u"{a:2.5, b:3.5, c:'TRUE', d:'12.5', e:[1], f:{g:1}, h:null, i:1e10, t:true, n:7}");
  EXPECT_EQ(object.getInt(u"a"), 2);
  EXPECT_EQ(object.getInt(u"b"), 4);
  EXPECT_EQ(object.getInt(u"d"), 12);
  EXPECT_EQ(object.getInt(u"n"), 7);
  EXPECT_EQ(object.getDouble(u"D"), 12.5);
  EXPECT_TRUE(object.getBoolean(u"c"));
  EXPECT_TRUE(object.getBoolean(u"t"));
  EXPECT_EQ(object.getString(u"a"), u"2.500000");
  EXPECT_EQ(object.getString(u"f"), uR"({"g":1})");
  EXPECT_EQ(object.getJSONArray(u"e").getInt(0), 1);
  EXPECT_EQ(object.getJSONObject(u"f").getInt(u"g"), 1);
  EXPECT_EQ(object.optInt(u"i", -1), -1);
  EXPECT_EQ(object.optInt(u"x", 5), 5);
  EXPECT_EQ(object.optDouble(u"c", 1.5), 1.5);
  EXPECT_EQ(object.optString(u"x", u"none"), u"none");
  EXPECT_EQ(object.optString(u"h", u"none"), u"null");
  EXPECT_FALSE(object.optBoolean(u"x"));
  EXPECT_TRUE(object.optBoolean(u"n", true));
  EXPECT_EQ(object.optJSONArray(u"f"), nullptr);
  EXPECT_EQ(object.optJSONObject(u"f"), object.opt(u"F"));
}

TEST(TJSONObject, ErrorTexts) {
  TJSONObject object(u"{'a b':x, n:1, i:1e10}");
  const TJSONObject& o = object;
  using NoElement = NoSuchElementException;
  EXPECT_EQ(MessageOf<NoElement>([&] { o.get(u"a/"); }), "TJSONObject[\"a/\"] not found.");
  EXPECT_EQ(MessageOf<NoElement>([&] { o.getInt(u"q"); }), "TJSONObject[\"q\"] not found.");
  EXPECT_EQ(MessageOf<ClassCastException>([&] { o.getBoolean(u"a b"); }),
            "TJSONObject[\"a\\u0020b\"] is not a Boolean.");
  EXPECT_EQ(MessageOf<NumberFormatException>([&] { o.getInt(u"a b"); }),
            "TJSONObject[\"a\\u0020b\"] is not a number.");
  EXPECT_EQ(MessageOf<NumberFormatException>([&] { o.getDouble(u"a b"); }),
            "TJSONObject[\"a\\u0020b\"] is not a number.");
  EXPECT_EQ(MessageOf<ClassCastException>([&] { o.getJSONArray(u"n"); }),
            "TJSONObject[\"n\"] is not a TJSONArray.");
  EXPECT_EQ(MessageOf<ClassCastException>([&] { o.getJSONObject(u"n"); }),
            "TJSONObject[\"n\"] is not a TJSONObject.");
  EXPECT_EQ(MessageOf<ERangeError>([&] { o.getInt(u"i"); }), "Range check error");
  EXPECT_EQ(MessageOf<NullPointerException>([&] { o.opt(StringView()); }), "Null key");
  EXPECT_EQ(MessageOf<NullPointerException>([&] { object.put(StringView(), 1); }), "Null key.");
}

TEST(TJSONArray, ErrorTexts) {
  TJSONArray array(u"[x,,1]");
  using NoElement = NoSuchElementException;
  EXPECT_EQ(MessageOf<NoElement>([&] { array.get(-1); }), "TJSONArray[-1] not found.");
  EXPECT_EQ(MessageOf<NoElement>([&] { array.get(1); }), "TJSONArray[1] not found.");
  EXPECT_EQ(MessageOf<NoElement>([&] { array.put(4, 1); }), "TJSONArray[4] not found.");
  EXPECT_EQ(MessageOf<ClassCastException>([&] { array.getBoolean(0); }),
            "TJSONArray[0] not a Boolean.");
  EXPECT_EQ(MessageOf<NumberFormatException>([&] { array.getDouble(0); }),
            "TJSONObject[0] is not a number.");
  EXPECT_EQ(MessageOf<NumberFormatException>([&] { array.getInt(0); }),
            "TJSONObject[0] is not a number.");
  EXPECT_EQ(MessageOf<ClassCastException>([&] { array.getJSONArray(2); }),
            "TJSONArray[2] is not a TJSONArray.");
  EXPECT_EQ(MessageOf<ClassCastException>([&] { array.getJSONObject(2); }),
            "TJSONArray[2] is not a TJSONObject is ");
}

TEST(TJSONArray, PutsReadsAndConverts) {
  TJSONArray array;
  array.put(1).put(u"a").put(false).put(std::unique_ptr<TZAbstractObject>());
  array.put(4, 0.5).put(0, u"first").put(1, TJSONArray(u"[1]"));
  EXPECT_EQ(array.toString(), uR"(["first",[1],false,null,0.500000])");
  EXPECT_EQ(array.opt(-1), nullptr);
  EXPECT_EQ(array.opt(5), nullptr);
  EXPECT_EQ(array.opt(3), nullptr);
  EXPECT_TRUE(array.isNull(3));
  EXPECT_EQ(array.join(u"; "), u"\"first\"; [1]; false; null; 0.500000");
  EXPECT_EQ(array.toJSONObject(TJSONArray(u"[x,y,z,u,v,w]")).toString(),
            uR"({"x":"first","y":[1],"z":false,"v":0.500000})");
  EXPECT_EQ(TJSONArray(array.toList()), array);
  EXPECT_EQ(array.remove(0)->toString(), u"first");
  EXPECT_EQ(array.remove(9), nullptr);
  EXPECT_EQ(array.length(), 4);
}

TEST(TJSONObject, OwnsHandsOverAndLends) {
  TJSONObject object(u"{a:'text', b:[1,2], c:true, d:null}");
  const TZAbstractObject* lent = object.opt(u"a");
  EXPECT_EQ(object.opt(u"a"), lent);
  const std::unique_ptr<TZAbstractObject> taken = object.remove(u"A");
  EXPECT_EQ(taken.get(), lent);
  EXPECT_EQ(object.remove(u"a"), nullptr);
  EXPECT_EQ(object.remove(u"c")->toString(), u"true");
  EXPECT_EQ(object.remove(u"d")->Kind(), JSONKind::kNull);
  TJSONObject copy = object;
  copy.getJSONArray(u"b").put(3);
  EXPECT_EQ(object.toString(), uR"({"b":[1,2]})");
  EXPECT_EQ(copy.toString(), uR"({"b":[1,2,3]})");
  copy = std::move(object);
  EXPECT_EQ(copy.toString(), uR"({"b":[1,2]})");
  EXPECT_TRUE(object.isEmpty());
  copy.clean();
  EXPECT_EQ(copy.put(u"x", 1).toString(), uR"({"x":1})");
}

TEST(TJSONObject, CombinesObjects) {
  TJSONObject object(u"{a:1, b:2, a:3}");
  object.accumulate(u"b", std::make_unique<_String>(u"x"));
  object.accumulate(u"B", std::make_unique<_Integer>(9));
  object.accumulate(u"c", std::make_unique<_Integer>(5));
  object.putOpt(u"d", nullptr);
  EXPECT_EQ(object.toString(), uR"({"a":1,"b":[2,"x",9],"a":3,"c":5})");
  TJSONObject target(u"{z:0, a:7}");
  object.assignTo(target);
  EXPECT_EQ(target.toString(), uR"({"z":0,"a":1,"b":[2,"x",9],"a":3,"c":5})");
  TStringList names;
  for (const StringView name : {u"C", u"none", u"A"}) names.Add(name);
  EXPECT_EQ(TJSONObject(object, names).toString(), uR"({"c":5,"a":1})");
  EXPECT_EQ(TJSONObject(names).toString(), uR"({"C":null,"none":null,"A":null})");
  EXPECT_EQ(object.toJSONArray(TJSONArray(u"[c,none,a]")).toString(), u"[5,null,1]");
  TStringList owning;
  owning.SetOwnsObjects(true);
  owning.AddObject(u"k", std::make_unique<_Integer>(3));
  EXPECT_EQ(TJSONObject(owning).toString(), uR"({"k":3})");
}

TEST(TZAbstractObject, Equality) {
  EXPECT_EQ(TJSONObject(u"{a:1,B:[1,,null]}"), TJSONObject(u"{b:[1.0,null,,],A:1}"));
  EXPECT_EQ(TJSONObject(u"{a:1,b:0,a:2}"), TJSONObject(u"{b:0,a:1,a:2}"));
  for (const auto* other : {u"{a:1,b:0,a:3}", u"{a:2,b:0,a:1}", u"{a:1,b:0,c:2}", u"{a:1,b:0}"}) {
    EXPECT_FALSE(TJSONObject(u"{a:1,b:0,a:2}") == TJSONObject(other)) << ToUtf8(other);
  }
  EXPECT_TRUE(_Integer(2).equals(_Double(2)));
  EXPECT_EQ(_Integer(2).hash(), _Double(2).hash());
  EXPECT_FALSE(_String(u"true").equals(_Boolean(true)));
  EXPECT_TRUE(_String(u"a").equalsIgnoreCase(u"A"));
  EXPECT_FALSE(_String(u"a").equals(_String(u"A")));
}

TEST(TZAbstractObject, ScalarOperations) {
  EXPECT_EQ(_Integer::parseInt(u"-7f", 16), -127);
  EXPECT_EQ(_Integer::parseInt(u"-80000000", 16), std::numeric_limits<std::int32_t>::min());
  for (const auto* text : {u"", u"-", u"8", u"80000000000"}) {
    EXPECT_THROW(_Integer::parseInt(text, 8), NumberFormatException) << ToUtf8(text);
  }
  EXPECT_EQ(_Integer::toHexString(u'\n'), u"0A");
  EXPECT_EQ(_Double(u"1.25").toString(), u"1.250000");
  EXPECT_EQ(MessageOf<NumberFormatException>([] { _Double(StringView(u"1,5")); }),
            "'1,5' is not a valid floating point value");
  EXPECT_TRUE(_Double(1).instanceOf(_Double(2)));
  EXPECT_FALSE(_Double(1).instanceOf(_Integer(2)));
  EXPECT_EQ(&_Boolean::valueOf(true), &_Boolean::_TRUE());
  HostValue host;
  EXPECT_EQ(host.toString().substr(0, 18), u"TZAbstractObject <");
  EXPECT_THROW(host.Clone(), NotImplmentedFeature);
  TJSONArray holder(u"[[1],2]");
  holder.put(std::make_unique<HostValue>());
  EXPECT_THROW(holder.Clone(), NotImplmentedFeature);
}

TEST(TextForm, Indented) {
  const TJSONObject object(u"{a:[1,{x:2},{y:3,z:[]}], b:{}, c:[[4,5]]}");
  EXPECT_EQ(
      object.toString(2, 1),
      u"{\n   \"a\": [\n     1,\n     {\"x\": 2},\n     {\n       \"y\": 3,\n       \"z\": []\n"
      u"     }\n   ],\n   \"b\": {},\n   \"c\": [[\n     4,\n     5\n   ]]\n }");
  EXPECT_EQ(TJSONArray(u"[1,2]").toString(0), u"[\n1,\n2\n]");
}

// Lookups by scanning and by index beside a plain model, while keys come, go and repeat.
TEST(TJSONObject, LookupsAgreeWithAPlainModel) {
  std::mt19937 random(7);
  TJSONObject object;
  std::map<String, std::int32_t> model;  // by upper-case key
  for (std::int32_t step = 0; step < 20000; ++step) {
    const auto* name = random() % 2 == 0 ? u"Key-α-" : u"kEY-Α-";
    const String key = Numbered(name, static_cast<std::int32_t>(random() % 700));
    const String upper = AnsiUpperCase(key);
    if (random() % 8 == 0) {
      EXPECT_EQ(object.remove(key) != nullptr, model.erase(upper) == 1);
    } else if (random() % 3 == 0) {
      object.put(key, step);
      model[upper] = step;
    }
    const auto found = model.find(upper);
    ASSERT_EQ(object.optInt(key, -1), found == model.end() ? -1 : found->second);
  }
  EXPECT_EQ(object.length(), static_cast<std::int32_t>(model.size()));
}

TEST(TJSONObject, FirstOfRepeatedKeysIsFoundInLargeObjects) {
  String text(1, u'{');
  for (int index = 0; index < 5000; ++index) {
    text += Numbered(u"k", index % 1000);
    text += Numbered(u":", index);
    text += u',';
  }
  text += u'}';
  TJSONObject object(text);
  for (int round = 0; round < 5; ++round) {
    for (int index = 0; index < 1000; ++index) {
      const int expected = round == 4 && index == 9 ? 1009 : index;
      ASSERT_EQ(object.getInt(Numbered(u"K", index)), expected);
    }
    if (round == 3) object.remove(u"k9");
  }
}

TEST(TJSONObject, ReplacedTextsDoNotPileUp) {
  TJSONObject object;
  String text(1000, u'x');
  for (int round = 0; round < 3000; ++round) {
    text[0] = static_cast<char16_t>(u'a' + round % 26);
    object.put(u"k", text).put(u"other", u"y");
    if (round % 2 == 0) object.opt(u"k");
    for (const JSONMember member : object) object.put(u"copy", member.key);
  }
  EXPECT_EQ(object.getString(u"k"), text);
  EXPECT_EQ(object.getString(u"copy"), u"copy");
  EXPECT_EQ(TJSONObject(object.toString()), object);
}

TEST(TextForm, StreamsPathsAndVariants) {
  TMemoryStream stream;
  const TJSONObject object(u"{a:{b:[1,'x',2.5,,null,true]}}");
  object.SaveToStream(stream);
  stream.SetPosition(0);
  const auto read = ReadJSON(stream);
  EXPECT_EQ(*read, object);
  EXPECT_EQ(FindByPath(*read, u"a/B/1")->toString(), u"x");
  EXPECT_EQ(FindByPath(*read, u""), read.get());
  for (const auto* path : {u"a/b/9", u"a/x", u"a/b/1/0", u"a/b/x"}) {
    EXPECT_EQ(FindByPath(*read, path), nullptr) << ToUtf8(path);
  }
  const TZAbstractObject* array = FindByPath(object, u"a/b");
  EXPECT_EQ(*JSONFromVariant(JSONToVariant(array)), *array);
  EXPECT_EQ(valueToString(JSONFromVariant(JSONToVariant(&object)).get()),
            uR"([["a",[["b",[1,"x",2.500000,null,null,true]]]]])");
  EXPECT_EQ(JSONFromVariant(Variant::Date(45292.5))->toString(), u"2024-01-01T12:00:00");
  EXPECT_EQ(JSONFromVariant(Variant(std::int64_t{1} << 40))->toString(), u"1099511627776.000000");
  const HostValue host;
  EXPECT_EQ(MessageOf<ClassCastException>([&] { JSONToVariant(&host); }),
            "TZAbstractObject has no variant form");
  EXPECT_EQ(MessageOf<ClassCastException>([] { JSONFromVariant(Variant(Variant::ByteArray(1))); }),
            "An array of bytes has no JSON form");
}

}  // namespace
}  // namespace zentavo
