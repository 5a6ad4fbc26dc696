#include "zentavo/genlib/quiet_writes.h"

#include <utility>

#include "zentavo/framework/variant_operators.h"
#include "zentavo/genlib/amounts.h"

namespace zentavo {

namespace {

class WithoutPostEvents {
 public:
  explicit WithoutPostEvents(TDataSet& data_set)
      : data_set_(data_set), before_(data_set.BeforePost()), after_(data_set.AfterPost()) {
    data_set_.SetBeforePost(nullptr);
    data_set_.SetAfterPost(nullptr);
  }
  WithoutPostEvents(const WithoutPostEvents&) = delete;
  WithoutPostEvents& operator=(const WithoutPostEvents&) = delete;
  ~WithoutPostEvents() {
    data_set_.SetBeforePost(std::move(before_));
    data_set_.SetAfterPost(std::move(after_));
  }

 private:
  TDataSet& data_set_;
  TDataSet::NotifyEvent before_;
  TDataSet::NotifyEvent after_;
};

class WithoutFieldEvents {
 public:
  explicit WithoutFieldEvents(TField& field)
      : field_(field), validate_(field.OnValidate()), change_(field.OnChange()) {
    field_.SetOnValidate(nullptr);
    field_.SetOnChange(nullptr);
  }
  WithoutFieldEvents(const WithoutFieldEvents&) = delete;
  WithoutFieldEvents& operator=(const WithoutFieldEvents&) = delete;
  ~WithoutFieldEvents() {
    field_.SetOnValidate(std::move(validate_));
    field_.SetOnChange(std::move(change_));
  }

 private:
  TField& field_;
  TField::NotifyEvent validate_;
  TField::NotifyEvent change_;
};

}  // namespace

void ZentavoPost(TDataSet& DataSet) {
  const WithoutPostEvents quiet(DataSet);
  DataSet.CheckBrowseMode();
}

void ZentavoSetField(TField& Field, const Variant& Value) {
  const WithoutFieldEvents quiet(Field);
  if (Field.Value() != Value) Field.SetValue(Value);
}

void ZentavoSetFloat(TField& Field, double Value) {
  ZentavoSetField(Field, ZentavoDoubleEqual(Value, 0) ? Variant::Null() : Variant(Value));
}

}  // namespace zentavo
