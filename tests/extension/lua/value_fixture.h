// Scripts on values: `vec`, `quat` and `mat` make them, and what an expression gives comes back as numbers.
#include "tavo/extension/lua/script_tables.h"
#pragma once
#include "tests/extension/lua/script_fixture.h"
#include <cmath>
#include <lua.hpp>
#include <vector>

namespace Tavo {

class ScriptValues : public Scripts {
protected:
    ScriptValues() {
        keep("sampleVector", XVector3());
        keep("sampleQuaternion", XQuaternion());
        keep("sampleMatrix", XMatrix());
        run("local function of(sample) return function(...) return setmetatable({...}, getmetatable(sample)) end end\n"
            "vec, quat, mat = of(sampleVector), of(sampleQuaternion), of(sampleMatrix)");
    }

    template<class Value> void keep(char const* name, Value const& value) {
        lua_State* const state = lua().State()->GetCState();
        lua().Tables().PushValue(state, value, scene().DatabaseID());
        lua_setglobal(state, name);
    }
    // The elements 1 to `count` of what the expression gives; the first alone of a number or a truth.
    std::vector<float> numbers(std::string const& expression, int count) {
        run("result = " + expression);
        lua_State* const state = lua().State()->GetCState();
        std::vector<float> values;
        lua_getglobal(state, "result");
        for (int i = 1; i <= count; ++i) {
            if (lua_istable(state, -1))
                lua_rawgeti(state, -1, i);
            else
                lua_pushvalue(state, -1);
            values.push_back(lua_isboolean(state, -1) ? float(lua_toboolean(state, -1))
                                                      : float(luaL_optnumber(state, -1, NAN)));
            lua_pop(state, 1);
        }
        lua_pop(state, 1);
        return values;
    }

    void expectNumbers(std::vector<float> const& wanted, std::string const& expression) {
        std::vector<float> const got = numbers(expression, int(wanted.size()));
        for (std::size_t i = 0; i < wanted.size(); ++i) EXPECT_NEAR(wanted[i], got[i], 1e-5f) << expression << " " << i;
    }
    void expectValue(float wanted, std::string const& expression) { expectNumbers({wanted}, expression); }
    void expectValue(XVector3 const& wanted, std::string const& expression) {
        expectNumbers({wanted.X(), wanted.Y(), wanted.Z()}, expression);
    }
    void expectValue(XQuaternion const& wanted, std::string const& expression) {
        expectNumbers({wanted.X(), wanted.Y(), wanted.Z(), wanted.W()}, expression);
    }
    void expectValue(XMatrix const& wanted, std::string const& expression) {
        std::vector<float> rows;
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                rows.push_back(column < 3 ? wanted.Element(row, column) : row == 3 ? 1.0f : 0.0f);
        expectNumbers(rows, expression);
    }
    // What changes a value gives it back, as the same table.
    template<class Value> void expectBecomes(Value const& wanted, std::string const& name, std::string const& call) {
        run("self = " + name);
        expectValue(wanted, "self:" + call);
        EXPECT_EQ("true", eval("return rawequal(self, result)")) << call;
    }

    static std::vector<std::string> namesOf(XScriptSet const& set) {
        std::vector<std::string> names;
        for (XScriptFunction const& function : set.functions) names.push_back(function.Name());
        return names;
    }
    // Calls every function of a value with all sorts of things. Whatever it does is an error of the script, or a
    // result without anything that is no number.
    void expectSound(std::string const& name) {
        EXPECT_EQ("0", eval(R"(
            local odd = {nil, 0, 1, -7, 1e300, true, 'x', {}, {1}, {x = 'y'}, vec(0, 0, 0), vec(1, 2, 3), quat(0, 0, 0, 0),
                         mat(), mat(0,0,0,0, 0,0,0,0, 0,0,0,0, 0,0,0,0), app.scene(), print}
            local zero = {0, vec(0, 0, 0), quat(0, 0, 0, 0), mat(0,0,0,0, 0,0,0,0, 0,0,0,0, 0,0,0,0), vec(1, 0, 0)}
            local function isSound(value)
                if type(value) == 'number' then return value == value end
                if type(value) ~= 'table' then return true end
                for i = 1, 16 do if value[i] ~= value[i] then return false end end
                return true
            end
            local bad = 0
            for key, call in pairs(getmetatable()" +
                            name + R"().__index) do
                for a = 1, 17 do for b = 1, 17 do pcall(call, )" +
                            name + R"(, odd[a], odd[b], odd[a]) end pcall(call, odd[a]) end
                for _, self in ipairs(zero) do for _, a in ipairs(zero) do for _, b in ipairs(zero) do
                    local copy = self
                    if type(self) == 'table' then
                        copy = {}
                        for i = 1, 16 do copy[i] = self[i] end
                    end
                    local ok, value = pcall(call, copy, a, b, 0.5)
                    if ok and not isSound(value) then bad = bad + 1 print(key, self, a, b) end
                end end end
            end
            return bad)"));
    }
};

}  // namespace Tavo
