// Script expressions beside Lua with globals and muparserx: compiled once and run many times while
// a variable changes, and compiled alone.
#include <mpParser.h>
#include <lua.hpp>

#include <array>
#include <cstdlib>
#include <string>

#include "ratios.h"
#include "zentavo/expr/evaluator.h"
#include "zentavo/expr/expression.h"

namespace {

struct Expression {
  const char* name;
  const char* zentavo;
  const char* lua;
  const char* muparserx;
};

// clamp(x, low, high) is a function of the host. muparserx has no operator for "not".
constexpr std::array<Expression, 3> kExpressions = {{
    {"logic", "a + b * c > d and not e", "a + b * c > d and not e", "a + b * c > d and e == false"},
    {"text", "name + ', ' + city = 'Smith, Athens'", "name .. ', ' .. city == 'Smith, Athens'",
     "name // \", \" // city == \"Smith, Athens\""},
    {"call", "clamp(a, b, c)", "clamp(a, b, c)", "clamp(a, b, c)"},
}};

constexpr const char* kNumbers[] = {"a", "b", "c", "d"};
constexpr double kValues[] = {1.5, 2.5, 3.5, 4.5};

double Clamp(double x, double low, double high) {
  return x < low ? low : x > high ? high : x;
}

// a alternates, so that no run can repeat the last one's result.
double NextA(double a) {
  return a == 1.5 ? 2.75 : 1.5;
}

// Zentavo ---------------------------------------------------------------------------------------

class Host : public zentavo::TExpressionEvaluator {
 public:
  Host() {
    for (const char16_t* name : {u"a", u"b", u"c", u"d", u"e", u"name", u"city"}) {
      variables_.AddValue(name, static_cast<std::uintptr_t>(variables_.Count() + 1));
    }
    functions_.AddValue(u"clamp", 1);
    SetPostFix(&code_);
  }
  void CallFunction(std::int32_t, zentavo::Variant& result) override {
    zentavo::Variant x, low, high;
    RunPop(high);
    RunPop(low);
    RunPop(x);
    result = Clamp(x.DoubleValue(), low.DoubleValue(), high.DoubleValue());
  }
  void GetVariableValue(std::int32_t id, zentavo::Variant& value) override {
    value = values_[static_cast<std::size_t>(id - 1)];
  }
  void Compile(zentavo::StringView text) {
    code_.clear();
    expression_.CompileExpression(text, code_, &variables_, &functions_);
  }
  void ChangeA() { values_[0] = NextA(values_[0].DoubleValue()); }

 private:
  std::array<zentavo::Variant, 7> values_ = {kValues[0], kValues[1], kValues[2], kValues[3],
                                             false,      u"Smith",   u"Athens"};
  zentavo::TStringList variables_, functions_;
  zentavo::TExpression expression_;
  zentavo::TCodeList code_;
};

void ZentavoRun(benchmark::State& state, const Expression& expression) {
  Host host;
  host.Compile(zentavo::FromUtf8(expression.zentavo));
  for (auto _ : state) {
    host.ChangeA();
    benchmark::DoNotOptimize(host.Evaluate());
  }
}

void ZentavoCompile(benchmark::State& state, const Expression& expression) {
  Host host;
  const zentavo::String text = zentavo::FromUtf8(expression.zentavo);
  for (auto _ : state) host.Compile(text);
}

// Lua -------------------------------------------------------------------------------------------

int LuaClamp(lua_State* state) {
  lua_pushnumber(state,
                 Clamp(lua_tonumber(state, 1), lua_tonumber(state, 2), lua_tonumber(state, 3)));
  return 1;
}

class LuaHost {
 public:
  LuaHost() : state_(luaL_newstate()) {
    for (std::size_t index = 0; index < std::size(kNumbers); ++index) {
      lua_pushnumber(state_, kValues[index]);
      lua_setglobal(state_, kNumbers[index]);
    }
    lua_pushboolean(state_, 0);
    lua_setglobal(state_, "e");
    lua_pushstring(state_, "Smith");
    lua_setglobal(state_, "name");
    lua_pushstring(state_, "Athens");
    lua_setglobal(state_, "city");
    lua_register(state_, "clamp", LuaClamp);
  }
  LuaHost(const LuaHost&) = delete;
  LuaHost& operator=(const LuaHost&) = delete;
  ~LuaHost() { lua_close(state_); }

  void Compile(const std::string& text) {
    lua_settop(state_, 0);
    if (luaL_loadbuffer(state_, text.data(), text.size(), "e") != LUA_OK) std::abort();
  }
  void ChangeA() {
    a_ = NextA(a_);
    lua_pushnumber(state_, a_);
    lua_setglobal(state_, "a");
  }
  double Run() {
    lua_pushvalue(state_, 1);
    if (lua_pcall(state_, 0, 1, 0) != LUA_OK) std::abort();
    const double value =
        lua_isnumber(state_, -1) ? lua_tonumber(state_, -1) : lua_toboolean(state_, -1);
    lua_pop(state_, 1);
    return value;
  }

 private:
  lua_State* state_;
  double a_ = kValues[0];
};

void LuaRun(benchmark::State& state, const Expression& expression) {
  LuaHost lua;
  lua.Compile(std::string("return ") + expression.lua);
  for (auto _ : state) {
    lua.ChangeA();
    benchmark::DoNotOptimize(lua.Run());
  }
}

void LuaCompile(benchmark::State& state, const Expression& expression) {
  LuaHost lua;
  const std::string text = std::string("return ") + expression.lua;
  for (auto _ : state) lua.Compile(text);
}

// muparserx -------------------------------------------------------------------------------------

class ClampX : public mup::ICallback {
 public:
  ClampX() : ICallback(mup::cmFUNC, "clamp", 3) {}
  void Eval(mup::ptr_val_type& result, const mup::ptr_val_type* args, int) override {
    *result = Clamp(args[0]->GetFloat(), args[1]->GetFloat(), args[2]->GetFloat());
  }
  const mup::char_type* GetDesc() const override { return "clamp(x, low, high)"; }
  mup::IToken* Clone() const override { return new ClampX(*this); }
};

class MuParserXHost {
 public:
  MuParserXHost() : parser_(mup::pckALL_NON_COMPLEX) {
    for (std::size_t index = 0; index < std::size(kNumbers); ++index) {
      numbers_[index] = kValues[index];
      Define(kNumbers[index], numbers_[index]);
    }
    Define("e", e_);
    Define("name", name_);
    Define("city", city_);
    parser_.DefineFun(new ClampX);
  }
  // muparserx compiles at the first evaluation.
  void Compile(const std::string& text) {
    parser_.SetExpr(text);
    benchmark::DoNotOptimize(parser_.Eval());
  }
  void ChangeA() { numbers_[0] = NextA(numbers_[0].GetFloat()); }
  const mup::IValue& Run() { return parser_.Eval(); }

 private:
  void Define(const char* name, mup::Value& value) {
    if (parser_.IsConstDefined(name)) parser_.RemoveConst(name);
    parser_.DefineVar(name, mup::Variable(&value));
  }

  mup::ParserX parser_;
  std::array<mup::Value, std::size(kNumbers)> numbers_;
  mup::Value e_ = false;
  mup::Value name_ = "Smith";
  mup::Value city_ = "Athens";
};

void MuParserXRun(benchmark::State& state, const Expression& expression) {
  MuParserXHost parser;
  parser.Compile(expression.muparserx);
  for (auto _ : state) {
    parser.ChangeA();
    benchmark::DoNotOptimize(parser.Run());
  }
}

// Its compiling is measured with one evaluation, about a tenth of the time.
void MuParserXCompile(benchmark::State& state, const Expression& expression) {
  MuParserXHost parser;
  const std::string text = expression.muparserx;
  for (auto _ : state) parser.Compile(text);
}

using Runner = void (*)(benchmark::State&, const Expression&);

void Register(const char* group, const char* who, Runner runner) {
  for (const Expression& expression : kExpressions) {
    const std::string name = std::string(group) + "/" + expression.name + "/" + who;
    benchmark::RegisterBenchmark(name.c_str(), [runner, &expression](benchmark::State& state) {
      runner(state, expression);
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  Register("run", "zentavo", ZentavoRun);
  Register("run", "Lua", LuaRun);
  Register("run", "muparserx", MuParserXRun);
  Register("compile", "zentavo", ZentavoCompile);
  Register("compile", "Lua", LuaCompile);
  Register("compile", "muparserx", MuParserXCompile);
  return bench::RunWithRatios(argc, argv);
}
