#pragma once
// The names of the articles that scans of numbers unknown to Quarn carry, from Quarn's
// article table of the module, for the project result's table P_Artikel.

#include <string>

namespace qi {

class Database;
class QGebDb;

/// Fills P_Artikel with the names of the article numbers of L_Unbekannt, read from the article
/// table of the module's object database that `geb` has open (`tablePrefix` "T_I", "T_T" or
/// "T_B"). Not inside a transaction. Where Quarn's objects are not open or can't be read, the
/// articles stay without names: the list is whole without them.
void fillArticleNames(Database& result, QGebDb& geb, const std::string& tablePrefix);

} // namespace qi
