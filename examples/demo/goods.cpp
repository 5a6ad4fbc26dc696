#include "examples/demo/goods.h"

#include <array>
#include <cstdint>

#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"

namespace demo {

namespace {

using zentavo::Format;
using zentavo::String;

// A generator of its own: those of the standard library differ between platforms.
class Dice {
 public:
  // 0 to `sides` - 1.
  int Throw(int sides) {
    state_ += 0x9E3779B97F4A7C15u;
    std::uint64_t mixed = (state_ ^ (state_ >> 30)) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
    return static_cast<int>((mixed >> 33) % static_cast<std::uint64_t>(sides));
  }

 private:
  std::uint64_t state_ = 2025;
};

struct Family {
  const char16_t* code;
  std::array<const char16_t*, 4> names;
  const char16_t* unit;
  std::array<int, 4> sizes;
  int cents_per_hundred;  // the price of a hundred units
  int vat_class;
};

constexpr Family kFamilies[] = {
    {u"OIL",
     {u"Ελαιόλαδο εξαιρετικό", u"Ελαιόλαδο βιολογικό", u"Extra virgin olive oil",
      u"Lemon olive oil"},
     u"ml",
     {250, 500, 750, 1000},
     156,
     2},
    {u"FET",
     {u"Φέτα ΠΟΠ", u"Κεφαλοτύρι", u"Goat cheese", u"Γραβιέρα Νάξου"},
     u"g",
     {200, 250, 400, 1000},
     136,
     2},
    {u"HNY",
     {u"Μέλι θυμαρίσιο", u"Μέλι πεύκου", u"Thyme honey", u"Chestnut honey"},
     u"g",
     {250, 450, 500, 950},
     220,
     2},
    {u"WIN",
     {u"Ασύρτικο", u"Ξινόμαυρο", u"Dry red wine", u"Sweet muscat"},
     u"ml",
     {187, 375, 750, 1500},
     176,
     1},
    {u"TEA",
     {u"Τσάι του βουνού", u"Χαμομήλι", u"Mountain tea", u"Sage, dried"},
     u"g",
     {20, 40, 50, 100},
     980,
     2},
    {u"BOK",
     {u"Μαγειρική των νησιών", u"Ποιήματα", u"Walks on Crete", u"Greek for travellers"},
     u"σελ.",
     {96, 160, 240, 320},
     900,
     3},
    {u"SOP",
     {u"Σαπούνι ελιάς", u"Σαπούνι δάφνης", u"Olive oil soap", u"Lavender soap"},
     u"g",
     {80, 100, 125, 200},
     199,
     1},
    {u"BAG",
     {u"Τσάντα υφασμάτινη", u"Καλάθι ψάθινο", u"Shopping bag", u"Beach bag"},
     u"cm",
     {30, 40, 50, 60},
     850,
     1},
};

String SomeDate(Dice& dice) {
  const int month = dice.Throw(18);  // from January 2024 to June 2025
  return Format(u"%d-%.2d-%.2d", {2024 + month / 12, 1 + month % 12, 1 + dice.Throw(28)});
}

String SomeDiscount(Dice& dice) {
  constexpr int kDiscounts[] = {0, 3, 5, 8, 10, 12};
  const int discount = kDiscounts[dice.Throw(6)];
  return discount == 0 ? String() : zentavo::IntToStr(discount);
}

// Many small orders, some large ones, and a line without pieces now and then.
int SomeQuantity(Dice& dice) {
  const int size = dice.Throw(10);
  if (size == 0) return 0;
  return size < 7 ? 1 + dice.Throw(30) : 30 + dice.Throw(300);
}

Item MakeItem(Dice& dice) {
  const Family& family = kFamilies[dice.Throw(8)];
  const int size = family.sizes[static_cast<std::size_t>(dice.Throw(4))];
  const int cents = family.cents_per_hundred * size / 100 * (85 + dice.Throw(35)) / 100;
  Item item;
  item.code = Format(u"%s-%.3d", {family.code, size});
  item.name = Format(u"%s %d %s",
                     {family.names[static_cast<std::size_t>(dice.Throw(4))], size, family.unit});
  item.unit_price = cents / 100.0;
  item.cost = cents * (40 + dice.Throw(34)) / 100 / 100.0;
  item.quantity = SomeQuantity(dice);
  item.discount = SomeDiscount(dice);
  item.vat_class = family.vat_class;
  item.price_date = SomeDate(dice);
  return item;
}

}  // namespace

std::vector<Item> MakeGoods(int count) {
  Dice dice;
  std::vector<Item> items;
  for (int i = 0; i < count; ++i) items.push_back(MakeItem(dice));
  return items;
}

}  // namespace demo
