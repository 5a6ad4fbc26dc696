// Trees that were read, whose values lie in one memory, as they are lent, changed and taken apart.
#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/small_stack.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"
#include "zentavo/json/tokener.h"

namespace zentavo {
namespace {

constexpr StringView kOrder =
    u"{id:7, 'customer name':'\u03A0\u03B1\u03C0\u03AC\u03C2', paid:true, rest:null, empty:{}, "
    u"none:[],"
    u" lines:[{item:A1, price:2.5, tags:[x,,z]}, {item:'B \\\"2\\\"', price:-0.125, tags:[]}]}";
constexpr StringView kOrderText =
    u"{\"id\":7,\"customer\\u0020name\":\"\\u03A0\\u03B1\\u03C0\\u03AC\\u03C2\",\"paid\":true,"
    u"\"rest\":null,\"empty\":{},\"none\":[],\"lines\":[{\"item\":\"A1\",\"price\":2.500000,"
    u"\"tags\":[\"x\",null,\"z\"]},{\"item\":\"B\\u0020\\\"2\\\"\",\"price\":-0.125000,"
    u"\"tags\":[]}]}";

String Numbered(StringView name, std::int32_t number) {
  String text(name);
  AppendInt(text, number);
  return text;
}

// Lends every value of a tree once.
void LendAll(const TZAbstractObject& value) {
  if (const auto* array = dynamic_cast<const TJSONArray*>(&value)) {
    for (const TZAbstractObject* element : *array) {
      if (element != nullptr) LendAll(*element);
    }
  }
  if (const auto* object = dynamic_cast<const TJSONObject*>(&value)) {
    for (const JSONMember member : *object) {
      if (member.value != nullptr) LendAll(*member.value);
    }
  }
}

TEST(ReadTree, LendsTheSameObjectsAgain) {
  TJSONObject order(kOrder);
  TJSONArray& lines = order.getJSONArray(u"lines");
  EXPECT_EQ(&order.getJSONArray(u"LINES"), &lines);
  EXPECT_EQ(order.opt(u"lines"), &lines);
  EXPECT_EQ(&lines.getJSONObject(1), lines.opt(1));
  EXPECT_EQ(order.opt(u"id"), &order.get(u"id"));
  const TZAbstractObject* lent = order.opt(u"empty");
  const std::unique_ptr<TZAbstractObject> taken = order.remove(u"empty");
  EXPECT_EQ(taken.get(), lent);
}

TEST(ReadTree, IsWrittenComparedAndHashedAlikeWhetherLentOrNot) {
  const TJSONObject untouched(kOrder);
  const TJSONObject lent(kOrder);
  LendAll(lent);
  EXPECT_EQ(untouched.toString(), kOrderText);
  EXPECT_EQ(lent.toString(), kOrderText);
  EXPECT_EQ(lent.toString(3, 1), untouched.toString(3, 1));
  EXPECT_EQ(lent, untouched);
  EXPECT_EQ(untouched, lent);
  EXPECT_EQ(lent.hash(), untouched.hash());
  EXPECT_EQ(JSONFromVariant(JSONToVariant(&lent))->toString(),
            JSONFromVariant(JSONToVariant(&untouched))->toString());
  for (const TJSONObject& copy : {TJSONObject(lent), TJSONObject(untouched)}) {
    EXPECT_EQ(copy.toString(), kOrderText);
    EXPECT_EQ(copy, lent);
  }
}

// Objects share the texts of keys with those read before them.
TEST(ReadTree, ObjectsReadTheSameBehindOthers) {
  constexpr StringView kKeys[] = {uR"("")",
                                  uR"("a")",
                                  uR"('a')",
                                  uR"(a)",
                                  uR"("A")",
                                  uR"("ab")",
                                  uR"("a b")",
                                  uR"("a'b")",
                                  uR"('a"b')",
                                  uR"("a\u0062")",
                                  uR"("abcd")",
                                  uR"("abcd5678")",
                                  uR"("abcd567x")",
                                  uR"("abcd56789")",
                                  uR"("abcd56789abcdef")",
                                  uR"("abcd56789abcdef0")",
                                  uR"("abcd56789abcdex0")",
                                  uR"("abcd56789abcdef01")",
                                  u"\"\u03B1\"",
                                  u"\"a\u03B1\"",
                                  uR"([a])"};
  const String blanks(20, u' ');
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    String all(1, u'[');
    String expected(1, u'[');
    for (auto objects = 2 + random() % 4; objects > 0; --objects) {
      String object(1, u'{');
      for (auto members = random() % 4; members > 0; --members) {
        object += kKeys[random() % std::size(kKeys)];
        object += random() % 3 == 0 ? u":{\"a\":[{\"a\":1}]}," : u":2,";
      }
      object += u'}';
      all += object + u",";
      expected += ReadJSON(object)->toString() + (objects > 1 ? u"," : u"]");
    }
    all += u']' + (round % 2 == 0 ? blanks : String());
    auto tree = ReadJSON(all);
    EXPECT_EQ(tree->toString(), expected) << ToUtf8(all);
    EXPECT_EQ(ReadJSONUtf8(ToUtf8(all))->toString(), expected) << ToUtf8(all);
    const auto copy = tree->Clone();
    tree.reset();
    EXPECT_EQ(copy->toString(), expected) << ToUtf8(all);
  }
  for (const StringView broken :
       {uR"([{"a'b":1},{'a'b':2}])", uR"([{'a"b':1},{"a"b":2}])", uR"([{"a":1},{"a:2}])"}) {
    EXPECT_THROW(ReadJSON(String(broken) + blanks), ParseException) << ToUtf8(broken);
  }
}

TEST(ReadTree, PartsOutliveTheTree) {
  std::unique_ptr<TZAbstractObject> lines;
  std::unique_ptr<TZAbstractObject> tags;
  std::unique_ptr<TZAbstractObject> name;
  const char16_t* key = nullptr;
  {
    TJSONObject order(kOrder);
    key = (*order.getJSONArray(u"lines").getJSONObject(1).begin()).key.data();
    tags = order.getJSONArray(u"lines").getJSONObject(0).remove(u"tags");
    lines = order.remove(u"lines");
    name = order.remove(u"customer name");
    EXPECT_FALSE(order.has(u"lines"));
  }
  EXPECT_EQ(tags->toString(), uR"(["x",null,"z"])");
  EXPECT_EQ(name->toString(), u"\u03A0\u03B1\u03C0\u03AC\u03C2");
  auto& array = dynamic_cast<TJSONArray&>(*lines);
  EXPECT_EQ(array.getJSONObject(0).names().toString(), uR"(["item","price"])");
  EXPECT_EQ(array.getJSONObject(1).getString(u"item"), u"B \"2\"");
  EXPECT_EQ((*array.getJSONObject(1).begin()).key.data(), key);  // the tree's memory is kept
  EXPECT_NE((*TJSONArray(array).getJSONObject(1).begin()).key.data(), key);
  array.getJSONObject(1).put(u"tags", std::move(tags));
  EXPECT_EQ(array.getJSONObject(1).getJSONArray(u"tags").getString(2), u"z");
}

TEST(ReadTree, CopiesStandAlone) {
  auto order = std::make_unique<TJSONObject>(kOrder);
  order->getJSONArray(u"lines").getJSONObject(0).put(u"price", 9.5);
  const TJSONObject copy = *order;
  const auto line = order->getJSONArray(u"lines").getJSONObject(1).Clone();
  order->getJSONArray(u"lines").getJSONObject(0).put(u"price", 1);
  order.reset();
  EXPECT_EQ(copy.getJSONArray(u"lines").getJSONObject(0).getDouble(u"price"), 9.5);
  EXPECT_EQ(dynamic_cast<TJSONObject&>(*line).getDouble(u"price"), -0.125);
}

TEST(ReadTree, MovesWithItsParts) {
  TJSONObject order(kOrder);
  const TJSONArray* lines = order.optJSONArray(u"lines");
  TJSONObject moved = std::move(order);
  EXPECT_EQ(moved.optJSONArray(u"lines"), lines);
  order = TJSONObject(u"{a:[1]}");
  EXPECT_EQ(order.toString(), uR"({"a":[1]})");
  order = std::move(moved);
  EXPECT_EQ(order.toString(), kOrderText);
  EXPECT_EQ(order.optJSONArray(u"lines"), lines);
  TJSONArray array(u"[[1],[2]]");
  array = TJSONArray(u"[3]");
  EXPECT_EQ(array.toString(), u"[3]");
}

TEST(ReadTree, GrowsBeyondWhatWasRead) {
  TJSONObject order(kOrder);
  TJSONArray& tags = order.getJSONArray(u"lines").getJSONObject(0).getJSONArray(u"tags");
  for (std::int32_t index = 0; index < 1000; ++index) {
    order.put(Numbered(u"key ", index), Numbered(u"value ", index));
    tags.put(index % 2 == 0 ? tags.getString(0) : String(order.keys().front()));
  }
  EXPECT_EQ(order.length(), 1007);
  EXPECT_EQ(order.getString(u"KEY 999"), u"value 999");
  EXPECT_EQ(order.getString(u"customer name"), u"\u03A0\u03B1\u03C0\u03AC\u03C2");
  EXPECT_EQ(tags.getString(1002), u"id");
  EXPECT_EQ(tags.getString(1001), u"x");
  const String text = order.toString();
  EXPECT_EQ(TJSONObject(text).toString(), text);
}

// Views into a container are arguments of changes to the same container.
TEST(ReadTree, TakesItsOwnTextsAsArguments) {
  TJSONObject object(u"{first:'one', second:'two'}");
  for (int round = 0; round < 50; ++round) {
    for (const JSONMember member : TJSONObject(object)) {
      const auto text = [&] {
        return dynamic_cast<const _String&>(*object.opt(member.key)).Text();
      };
      object.put(u"first", text());
      object.put(text(), text());
    }
  }
  EXPECT_EQ(object.toString(), uR"({"first":"two","second":"two","one":"one","two":"two"})");
  TJSONArray array(u"[a]");
  for (int round = 0; round < 50; ++round) {
    array.put(dynamic_cast<const _String&>(array.get(0)).Text());
    array.put(0, dynamic_cast<const _String&>(array.get(0)).Text());
  }
  EXPECT_EQ(array.length(), 51);
  EXPECT_EQ(array.getString(50), u"a");
}

TEST(ReadTree, ContainersMoveBetweenTrees) {
  TJSONArray from(u"[[1,[2]],{a:{b:c}},'text']");
  TJSONObject to(u"{x:[]}");
  to.getJSONArray(u"x").put(from.remove(0)).put(from.remove(0));
  from.clean();
  to.put(u"y", to.remove(u"x"));
  EXPECT_EQ(to.toString(), uR"({"y":[[1,[2]],{"a":{"b":"c"}}]})");
  EXPECT_EQ(from.put(1).toString(), u"[1]");
}

// Every kind of value in every place, changed by random steps beside a list of its text forms.
TEST(ReadTree, ArraysAgreeWithAPlainModel) {
  std::mt19937 random(11);
  const std::vector<StringView> texts = {
      u"1",    u"-2.500000", u"\"t\"",      u"\"long\\u0020text\"",
      u"true", u"null",      u"[1,[2,{}]]", u"{\"k\":[\"v\"]}"};
  const auto pick = [&] { return texts[random() % texts.size()]; };
  std::vector<String> model;
  String start(1, u'[');
  for (int index = 0; index < 40; ++index) {
    model.emplace_back(pick());
    start += model.back();
    start += index < 39 ? u',' : u']';
  }
  TJSONArray array(start);
  for (int step = 0; step < 5000; ++step) {
    const auto at = static_cast<std::int32_t>(random() % (model.size() + 1));
    const auto place = static_cast<std::size_t>(at);
    const StringView text = pick();
    switch (random() % 5) {
      case 0:
        array.put(at, ReadJSON(text));
        if (place == model.size()) model.emplace_back();
        model[place] = text;
        break;
      case 1:
        if (const auto taken = array.remove(at)) {
          ASSERT_EQ(valueToString(taken.get()), model[place]);
          model.erase(model.begin() + at);
        }
        break;
      case 2:
        if (model.size() < 60) {
          array.put(Numbered(u"n", step));
          model.push_back(quote(Numbered(u"n", step)));
        }
        break;
      case 3:
        ASSERT_EQ(valueToString(array.opt(at)), place < model.size() ? model[place] : u"null");
        break;
      default:
        if (random() % 10 == 0) array = TJSONArray(array.toString(step % 3));
    }
    ASSERT_EQ(array.length(), static_cast<std::int32_t>(model.size()));
  }
  String all;
  for (const String& text : model) all += text;
  EXPECT_EQ(array.join(u""), all);
}

TEST(ReadTree, TreesOfOneDocumentBelongToDifferentThreads) {
  TJSONArray halves(u"[[[1,2],{a:[3]}],[[4,5],{b:[6]}]]");
  std::vector<std::unique_ptr<TZAbstractObject>> parts;
  while (!halves.isEmpty()) parts.push_back(halves.remove(0));
  std::vector<std::thread> threads;
  std::vector<std::int32_t> lengths(parts.size());
  for (std::size_t index = 0; index < parts.size(); ++index) {
    threads.emplace_back([part = std::move(parts[index]), &length = lengths[index]] {
      auto& array = dynamic_cast<TJSONArray&>(*part);
      LendAll(array);
      for (int round = 0; round < 100; ++round) array.put(array.getJSONArray(0));
      length = array.length();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(lengths, (std::vector<std::int32_t>{102, 102}));
}

TEST(ReadTree, LargeContainersWithinEachOther) {
  String inner(1, u'[');
  for (int index = 0; index < 6000; ++index) AppendInt(inner, index), inner += u',';
  inner.back() = u']';
  String text(1, u'[');
  for (int index = 0; index < 3; ++index) text += inner, text += u',';
  for (int index = 0; index < 6000; ++index) text += u"{a:b},";
  text.back() = u']';
  TJSONArray array(text);
  EXPECT_EQ(array.length(), 6003);
  for (int index = 0; index < 3; ++index) EXPECT_EQ(array.getJSONArray(index).toString(), inner);
  EXPECT_EQ(array.getJSONObject(6002).getString(u"a"), u"b");
  const std::unique_ptr<TZAbstractObject> taken = array.remove(1);
  array.clean();
  EXPECT_EQ(taken->toString(), inner);
  TJSONObject object(u"{x:" + inner + u"}");
  EXPECT_EQ(object.getJSONArray(u"x").getInt(5999), 5999);
}

// Texts longer than any part of the memory they are read into, plain and with escapes.
TEST(ReadTree, LongTextsComeThrough) {
  for (const std::size_t length : {100u, 1000u, 70000u, 131072u, 300000u, 700001u}) {
    String text(length, u'a');
    for (std::size_t at = 0; at < length; at += 97) text[at] = at % 2 == 0 ? u'\n' : u'\u20AC';
    TJSONArray array;
    array.put(u"before").put(text).put(u"after").put(StringView(text).substr(1));
    const TJSONArray read(array.toString());
    EXPECT_EQ(read, array) << length;
    const TJSONArray raw =
        TJSONArray::FromUtf8(ToUtf8(u"['x','" + String(length, u'\u20AC') + u"']"));
    EXPECT_EQ(raw.getString(1), String(length, u'\u20AC')) << length;
  }
}

String Repeat(StringView text, int count) {
  String all;
  for (int done = 0; done < count; ++done) all += text;
  return all;
}

struct Nesting {
  const char16_t* open;
  const char16_t* close;
  int levels;  // that the two make
};

constexpr Nesting kNestings[] = {{u"[", u"]", 1},
                                 {u"{a:", u"}", 1},
                                 {u"[{a:", u"}]", 2},
                                 {u"[1,", u",2]", 1},
                                 {u"[[],", u"]", 1}};

TEST(Nesting, AtTheLimitAndBeyond) {
  for (const Nesting& row : kNestings) {
    const int count = kMaxJSONDepth / row.levels - 1;
    const String text = Repeat(row.open, count) + u"[0]" + Repeat(row.close, count);
    EXPECT_NO_THROW(ReadJSON(text)) << ToUtf8(row.open);
    const String deeper = Repeat(row.open, count + 1) + u"[0]" + Repeat(row.close, count + 1);
    try {
      ReadJSON(deeper);
      ADD_FAILURE() << ToUtf8(row.open);
    } catch (const ParseException& error) {
      EXPECT_EQ(error.Reason(), u"Nesting too deep");
    }
  }
}

TEST(Nesting, TakesNoStack) {
  testing::RunOnSmallStack([] {
    constexpr int kDeep = 100000;
    for (const Nesting& row : kNestings) {
      JSONTokener tokener(Repeat(row.open, kDeep) + u"[0]" + Repeat(row.close, kDeep));
      tokener.SetMaxDepth(3 * kDeep);
      const auto deep = tokener.nextValue();
      const auto copy = deep->Clone();
      EXPECT_TRUE(copy->equals(*deep));
      EXPECT_EQ(copy->toString(), deep->toString());
      TZAbstractObject* value = copy.get();  // lent one by one, they are freed one by one
      while (value != nullptr) {
        auto* array = dynamic_cast<TJSONArray*>(value);
        auto* object = dynamic_cast<TJSONObject*>(value);
        if (array == nullptr && object == nullptr) break;
        value = object != nullptr ? object->opt(u"a") : array->opt(array->length() > 1 ? 1 : 0);
      }
    }
    for (const auto* open : {u"[", u"{a:", u"{[", u"{{", u"[{", u"/*[", u"[/", u"['", u"{'a':"}) {
      EXPECT_THROW(ReadJSON(Repeat(open, 1000000)), ParseException) << ToUtf8(open);
    }
  });
}

}  // namespace
}  // namespace zentavo
