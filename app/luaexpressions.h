#pragma once

struct lua_State;

namespace blockara::app {

/// Adds `blockara.expressionAnswers(handles, test)` to the `blockara` table of `L`, which must
/// exist. For each handle (`handles` is a number, a list of numbers or an nx.array of doubles)
/// it answers whether the live block of that handle has a numeric-expression dialog parameter
/// (type code 6) whose text `test` answers true for; a handle of 0 or of a block that is gone
/// is answered false. `test` is called once per distinct text, and the parameters of a block
/// are read in dialog order up to the first true answer. Returns a logical nx.array of one row.
/// An error of `test` goes up to the caller. Main thread.
void installExpressionAnswers(lua_State* L);

}  // namespace blockara::app
