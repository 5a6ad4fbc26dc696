#include "zentavo/formula/result_values.h"

#include "zentavo/framework/date_time.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

String ResultText(const TResult& result) {
  switch (result.ResultType) {
    case resUndefined:
    case resString: return result.ResultStr;
    case resDate: return DateToStr(result.ResultNum);
    case resTime: return TimeToStr(result.ResultNum);
    default: return FloatToStr(result.ResultNum);
  }
}

}  // namespace zentavo
