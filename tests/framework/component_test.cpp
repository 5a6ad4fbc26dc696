#include "zentavo/framework/component.h"

#include <gtest/gtest.h>

#include <utility>

#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

class Part : public TComponent {
 public:
  Part(String name, String& log) : TComponent(std::move(name)), log_(log) {}
  ~Part() override { log_ += Name(); }

 private:
  String& log_;
};

TEST(TComponent, DestroysWhatItOwnsLastFirst) {
  String log;
  {
    TComponent owner;
    TComponent& a = owner.InsertComponent(std::make_unique<Part>(u"a", log));
    owner.InsertComponent(std::make_unique<Part>(u"b", log));
    a.InsertComponent(std::make_unique<Part>(u"c", log));
  }
  EXPECT_EQ(log, u"bac");
}

TEST(TComponent, HandsAComponentBack) {
  String log;
  TComponent owner;
  TComponent& part = owner.InsertComponent(std::make_unique<Part>(u"Part", log));
  EXPECT_EQ(part.Owner(), &owner);
  EXPECT_EQ(owner.FindComponent(u"PART"), &part);
  const std::unique_ptr<TComponent> removed = owner.RemoveComponent(part);
  EXPECT_EQ(removed.get(), &part);
  EXPECT_EQ(removed->Owner(), nullptr);
  EXPECT_EQ(owner.RemoveComponent(part), nullptr);
  EXPECT_EQ(owner.FindComponent(u"Part"), nullptr);
  EXPECT_EQ(log, u"");
  EXPECT_THROW(owner.Components(0), EListError);
}

}  // namespace
}  // namespace zentavo
