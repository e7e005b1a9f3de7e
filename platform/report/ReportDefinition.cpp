#include "ReportDefinition.h"

#include "AtomicFile.h"
#include "FileSystem.h"
#include "ReportError.h"

#include <QString>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <optional>

namespace qi {

namespace {

constexpr std::size_t kMaxGroups = 8;

/// A key or section name as compared: lower case, umlauts spelled out, no blanks or hyphens.
std::string normalised(std::string_view name)
{
    QString s = QString::fromUtf8(name.data(), qsizetype(name.size())).toLower();
    s.replace(QStringLiteral("ä"), QStringLiteral("ae"))
        .replace(QStringLiteral("ö"), QStringLiteral("oe"))
        .replace(QStringLiteral("ü"), QStringLiteral("ue"))
        .replace(QStringLiteral("ß"), QStringLiteral("ss"));
    s.remove(QLatin1Char(' ')).remove(QLatin1Char('-')).remove(QLatin1Char('\t'));
    return s.toStdString();
}

/// A field name as written: "[Anzahl von stName]" stands for "Anzahl von stName".
std::string fieldName(std::string_view s)
{
    s = definitionTrim(s);
    if (s.size() >= 2 && s.front() == '[' && s.back() == ']')
        s = definitionTrim(s.substr(1, s.size() - 2));
    return std::string(s);
}

enum class Section { None, Report, PageHeader, PageFooter, ReportHeader, Group, Column, Summary, Breakdown };

struct SectionInfo {
    const char* name;    ///< as written in the help file
    const char* key;     ///< normalised
    Section section;
    bool repeatable;
    std::vector<const char*> keys;      ///< normalised keys allowed
    std::vector<const char*> multiKeys; ///< of them, those that may be given several times
};

const std::vector<SectionInfo>& sections()
{
    static const std::vector<SectionInfo> all = {
        {"Bericht", "bericht", Section::Report, false,
         {"titel", "quelle", "sql", "sortierung", "seite", "schriftgroesse", "leertext"}, {}},
        {"Seitenkopf", "seitenkopf", Section::PageHeader, false, {"titel", "links", "rechts"}, {"links", "rechts"}},
        {"Seitenfuß", "seitenfuss", Section::PageFooter, false, {"links", "rechts"}, {"links", "rechts"}},
        {"Berichtskopf", "berichtskopf", Section::ReportHeader, false, {"zeile"}, {"zeile"}},
        {"Gruppe", "gruppe", Section::Group, true,
         {"feld", "ueberschrift", "zusatzfeld", "kopf", "fuss", "neueseite"}, {"zusatzfeld", "kopf", "fuss"}},
        {"Spalte", "spalte", Section::Column, true,
         {"feld", "ueberschrift", "breite", "ausrichtung", "format", "umbruch", "summe", "optional"}, {}},
        {"Zusammenfassung", "zusammenfassung", Section::Summary, false, {"zeile", "summenzeile"}, {"zeile"}},
        {"Aufschlüsselung", "aufschluesselung", Section::Breakdown, true, {"feld", "ueberschrift", "wert"}, {}},
    };
    return all;
}

/// One "key = value" of the file, with continuation lines joined.
struct Entry {
    int line = 0;
    std::string key;    ///< normalised
    std::string name;   ///< as written
    std::string value;
};

struct SectionBlock {
    const SectionInfo* info = nullptr;
    int line = 0;
    std::vector<Entry> entries;
};

class Parser {
public:
    Parser(std::string_view text, const std::string& file) : text_(text), file_(file) {}

    ReportDefinition parse()
    {
        split();
        ReportDefinition def;
        def.file = file_;
        def.pageTitle = tmpl("{Titel}", 0);
        def.pageHeaderLeft = {tmpl("Projekt: {Projekt}", 0)};
        def.pageHeaderRight = {tmpl("Auftrag: {Auftrag}", 0), tmpl("Gedruckt am {Druckdatum}", 0)};
        def.pageFooterLeft = {tmpl("{Berichtsdatei}", 0)};
        def.pageFooterRight = {tmpl("Seite {Seite} von {Seiten}", 0)};

        const SectionBlock* report = nullptr;
        for (const SectionBlock& block : blocks_) {
            switch (block.info->section) {
            case Section::Report:
                report = &block;
                readReport(block, def);
                break;
            case Section::PageHeader:
                readPageHeader(block, def);
                break;
            case Section::PageFooter:
                readPageFooter(block, def);
                break;
            case Section::ReportHeader:
                for (const Entry& e : block.entries)
                    addLine(def.reportHeader, e);
                break;
            case Section::Group:
                if (def.groups.size() == kMaxGroups)
                    fail(block.line, "Mehr als " + std::to_string(kMaxGroups) + " Gruppen sind nicht möglich.");
                def.groups.push_back(readGroup(block));
                break;
            case Section::Column:
                def.columns.push_back(readColumn(block));
                break;
            case Section::Summary:
                for (const Entry& e : block.entries) {
                    if (e.key == "zeile")
                        addLine(def.summary, e);
                    else
                        def.totalsLabel = e.value;
                }
                break;
            case Section::Breakdown:
                def.breakdowns.push_back(readBreakdown(block));
                break;
            case Section::None:
                break;
            }
        }
        if (!report)
            fail(firstLine_, "Der Abschnitt [Bericht] fehlt.");
        if (def.columns.empty())
            fail(lastLine_, "Der Bericht hat keine Spalte: es fehlt ein Abschnitt [Spalte].");
        return def;
    }

    [[noreturn]] void fail(int line, const std::string& what) const { throw definitionError(file_, line, what); }

    TextTemplate tmpl(std::string_view text, int line) const { return parseTextTemplate(text, file_, line); }

private:
    void split()
    {
        SectionBlock* current = nullptr;
        Entry* last = nullptr;
        int lineNo = 0;
        std::size_t pos = 0;
        while (pos <= text_.size()) {
            std::size_t end = text_.find('\n', pos);
            if (end == std::string_view::npos)
                end = text_.size();
            std::string_view raw = text_.substr(pos, end - pos);
            pos = end + 1;
            ++lineNo;
            if (!raw.empty() && raw.back() == '\r')
                raw.remove_suffix(1);
            const std::string_view line = definitionTrim(raw);
            if (line.empty() || line.front() == '#' || line.front() == ';') {
                if (end == text_.size())
                    break;
                continue;
            }
            if (firstLine_ == 0)
                firstLine_ = lineNo;
            lastLine_ = lineNo;
            const bool indented = raw.front() == ' ' || raw.front() == '\t';
            if (line.front() == '[') {
                if (line.back() != ']')
                    fail(lineNo, "Die Abschnittsüberschrift muss mit ']' enden.");
                const std::string key = normalised(line.substr(1, line.size() - 2));
                const auto& all = sections();
                auto it = std::find_if(all.begin(), all.end(), [&](const SectionInfo& s) { return key == s.key; });
                if (it == all.end())
                    fail(lineNo, "Unbekannter Abschnitt " + std::string(line) + ".");
                if (!it->repeatable)
                    for (const SectionBlock& b : blocks_)
                        if (b.info == &*it)
                            fail(lineNo, "Der Abschnitt [" + std::string(it->name) + "] ist schon in Zeile " +
                                             std::to_string(b.line) + " angegeben.");
                blocks_.push_back({&*it, lineNo, {}});
                current = &blocks_.back();
                last = nullptr;
            } else if (indented && last) {
                last->value += (last->key == "sql" ? "\n" : " ");
                last->value += line;
            } else {
                const auto eq = line.find('=');
                if (eq == std::string_view::npos)
                    fail(lineNo, "Erwartet wird \"Schlüssel = Wert\" oder eine Abschnittsüberschrift in "
                                 "eckigen Klammern.");
                if (!current)
                    fail(lineNo, "Vor dem ersten Abschnitt darf kein Schlüssel stehen.");
                const std::string name(definitionTrim(line.substr(0, eq)));
                const std::string key = normalised(name);
                const SectionInfo& info = *current->info;
                if (std::find_if(info.keys.begin(), info.keys.end(), [&](const char* k) { return key == k; }) ==
                    info.keys.end())
                    fail(lineNo, "Unbekannter Schlüssel \"" + name + "\" im Abschnitt [" + info.name + "].");
                const bool multi = std::find_if(info.multiKeys.begin(), info.multiKeys.end(),
                                                [&](const char* k) { return key == k; }) != info.multiKeys.end();
                if (!multi)
                    for (const Entry& e : current->entries)
                        if (e.key == key)
                            fail(lineNo, "\"" + name + "\" ist in diesem Abschnitt schon in Zeile " +
                                             std::to_string(e.line) + " angegeben.");
                current->entries.push_back({lineNo, key, name, std::string(definitionTrim(line.substr(eq + 1)))});
                last = &current->entries.back();
            }
            if (end == text_.size())
                break;
        }
    }

    const Entry* find(const SectionBlock& block, const char* key) const
    {
        for (const Entry& e : block.entries)
            if (e.key == key)
                return &e;
        return nullptr;
    }

    const Entry& require(const SectionBlock& block, const char* key, const char* name) const
    {
        if (const Entry* e = find(block, key)) {
            if (definitionTrim(e->value).empty())
                fail(e->line, "\"" + e->name + "\" braucht einen Wert.");
            return *e;
        }
        fail(block.line, "Im Abschnitt [" + std::string(block.info->name) + "] fehlt \"" + name + "\".");
    }

    bool yesNo(const Entry& e) const
    {
        const std::string v = normalised(e.value);
        if (v == "ja")
            return true;
        if (v == "nein")
            return false;
        fail(e.line, "\"" + e.value + "\" ist kein Wert für \"" + e.name + "\": erlaubt sind ja und nein.");
    }

    std::optional<double> number(std::string_view text) const
    {
        std::string s(definitionTrim(text));
        std::replace(s.begin(), s.end(), ',', '.');
        double v = 0;
        const auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
        if (ec != std::errc() || p != s.data() + s.size() || s.empty())
            return std::nullopt;
        return v;
    }

    void addLine(std::vector<TextTemplate>& lines, const Entry& e) const
    {
        if (!definitionTrim(e.value).empty())
            lines.push_back(tmpl(e.value, e.line));
    }

    /// A key that may be given several times: its first use replaces the default lines.
    void addReplacing(std::vector<TextTemplate>& lines, const Entry& e, std::vector<std::string>& seen) const
    {
        if (std::find(seen.begin(), seen.end(), e.key) == seen.end()) {
            seen.push_back(e.key);
            lines.clear();
        }
        addLine(lines, e);
    }

    void readReport(const SectionBlock& block, ReportDefinition& def) const
    {
        def.title = require(block, "titel", "Titel").value;
        const Entry* source = find(block, "quelle");
        const Entry* sql = find(block, "sql");
        if (source && sql)
            fail(sql->line, "\"Quelle\" und \"SQL\" schließen einander aus: nur eines von beiden angeben.");
        if (!source && !sql)
            fail(block.line, "Im Abschnitt [Bericht] fehlt die Datenquelle: \"Quelle\" oder \"SQL\".");
        if (source) {
            def.source = fieldName(source->value);
            def.sourceLine = source->line;
            if (def.source.empty())
                fail(source->line, "\"Quelle\" braucht einen Wert.");
        } else {
            def.sql = std::string(definitionTrim(sql->value));
            def.sourceLine = sql->line;
            const std::string start = normalised(def.sql.substr(0, std::min<std::size_t>(def.sql.size(), 6)));
            if (start.rfind("select", 0) != 0 && start.rfind("with", 0) != 0)
                fail(sql->line, "\"SQL\" muss eine Abfrage sein, die mit SELECT oder WITH beginnt.");
        }
        if (const Entry* e = find(block, "sortierung"))
            def.sort = sortKeys(*e);
        if (const Entry* e = find(block, "seite")) {
            const std::string v = normalised(e->value);
            if (v == "querformat")
                def.landscape = true;
            else if (v != "hochformat")
                fail(e->line, "\"" + e->value + "\" ist kein Seitenformat: erlaubt sind Hochformat und Querformat.");
        }
        if (const Entry* e = find(block, "schriftgroesse")) {
            const auto v = number(e->value);
            if (!v || *v < 6 || *v > 14)
                fail(e->line, "Die Schriftgröße muss eine Zahl von 6 bis 14 (Punkt) sein.");
            def.fontSize = *v;
        }
        if (const Entry* e = find(block, "leertext"))
            def.emptyText = e->value;
    }

    std::vector<SortKey> sortKeys(const Entry& e) const
    {
        std::vector<SortKey> keys;
        std::string_view rest = e.value;
        while (true) {
            const auto comma = rest.find(',');
            std::string_view item = definitionTrim(rest.substr(0, comma));
            SortKey key;
            key.line = e.line;
            const auto blank = item.find_last_of(" \t");
            if (blank != std::string_view::npos) {
                const std::string dir = normalised(item.substr(blank + 1));
                if (dir == "absteigend" || dir == "aufsteigend") {
                    key.descending = dir == "absteigend";
                    item = definitionTrim(item.substr(0, blank));
                }
            }
            key.field = fieldName(item);
            if (key.field.empty())
                fail(e.line, "Die Sortierung nennt ein leeres Feld.");
            keys.push_back(key);
            if (comma == std::string_view::npos)
                break;
            rest = rest.substr(comma + 1);
        }
        return keys;
    }

    void readPageHeader(const SectionBlock& block, ReportDefinition& def) const
    {
        std::vector<std::string> seen;
        for (const Entry& e : block.entries) {
            if (e.key == "titel")
                def.pageTitle = tmpl(e.value, e.line);
            else
                addReplacing(e.key == "links" ? def.pageHeaderLeft : def.pageHeaderRight, e, seen);
        }
    }

    void readPageFooter(const SectionBlock& block, ReportDefinition& def) const
    {
        std::vector<std::string> seen;
        for (const Entry& e : block.entries)
            addReplacing(e.key == "links" ? def.pageFooterLeft : def.pageFooterRight, e, seen);
    }

    GroupDef readGroup(const SectionBlock& block) const
    {
        GroupDef g;
        const Entry& field = require(block, "feld", "Feld");
        g.field = fieldName(field.value);
        g.line = field.line;
        g.heading = g.field;
        for (const Entry& e : block.entries) {
            if (e.key == "ueberschrift")
                g.heading = e.value;
            else if (e.key == "kopf")
                addLine(g.header, e);
            else if (e.key == "fuss")
                addLine(g.footer, e);
            else if (e.key == "neueseite")
                g.newPage = yesNo(e);
            else if (e.key == "zusatzfeld") {
                const auto bar = e.value.find('|');
                GroupFieldDef extra;
                extra.field = fieldName(e.value.substr(0, bar));
                extra.heading = bar == std::string::npos ? extra.field : std::string(definitionTrim(e.value.substr(bar + 1)));
                extra.line = e.line;
                if (extra.field.empty())
                    fail(e.line, "\"Zusatzfeld\" braucht einen Feldnamen (\"Feld | Überschrift\").");
                g.extraFields.push_back(extra);
            }
        }
        return g;
    }

    ColumnDef readColumn(const SectionBlock& block) const
    {
        ColumnDef c;
        const Entry& field = require(block, "feld", "Feld");
        c.field = fieldName(field.value);
        c.line = field.line;
        c.heading = c.field;
        bool aligned = false;
        for (const Entry& e : block.entries) {
            if (e.key == "ueberschrift") {
                c.heading = e.value;
            } else if (e.key == "breite") {
                if (definitionTrim(e.value) == "*")
                    continue;
                std::string v(definitionTrim(e.value));
                if (v.size() > 2 && normalised(v.substr(v.size() - 2)) == "mm")
                    v = std::string(definitionTrim(v.substr(0, v.size() - 2)));
                const auto w = number(v);
                if (!w || *w < 3 || *w > 1000)
                    fail(e.line, "Die Breite muss eine Zahl von 3 bis 1000 (Millimeter) oder \"*\" sein.");
                c.widthMm = *w;
            } else if (e.key == "ausrichtung") {
                const std::string v = normalised(e.value);
                aligned = true;
                if (v == "links")
                    c.alignment = Alignment::Left;
                else if (v == "rechts")
                    c.alignment = Alignment::Right;
                else if (v == "zentriert" || v == "mitte")
                    c.alignment = Alignment::Center;
                else
                    fail(e.line, "\"" + e.value + "\" ist keine Ausrichtung: erlaubt sind links, rechts und zentriert.");
            } else if (e.key == "format") {
                c.format = valueFormat(e);
            } else if (e.key == "umbruch") {
                c.wrap = yesNo(e);
            } else if (e.key == "summe") {
                c.sum = yesNo(e);
            } else if (e.key == "optional") {
                c.optional = yesNo(e);
            }
        }
        if (!aligned && c.format.kind == ValueFormat::Kind::Number)
            c.alignment = Alignment::Right;
        return c;
    }

    ValueFormat valueFormat(const Entry& e) const
    {
        std::string_view v = definitionTrim(e.value);
        const auto blank = v.find_first_of(" \t:");
        const std::string kind = normalised(v.substr(0, blank));
        const std::string_view arg = blank == std::string_view::npos ? std::string_view() : definitionTrim(v.substr(blank + 1));
        ValueFormat f;
        if (kind == "text" && arg.empty())
            return f;
        if (kind == "zahl") {
            f.kind = ValueFormat::Kind::Number;
            if (!arg.empty()) {
                const auto d = number(arg);
                if (!d || *d < 0 || *d > 6 || *d != int(*d))
                    fail(e.line, "Nach \"Zahl\" steht die Zahl der Nachkommastellen (0 bis 6).");
                f.decimals = int(*d);
            }
            return f;
        }
        if (kind == "datum") {
            f.kind = ValueFormat::Kind::Date;
            f.datePattern = "dd.MM.yyyy";
            if (!arg.empty()) {
                std::string pattern(arg);
                for (char& ch : pattern) {
                    if (ch == 'T')
                        ch = 'd';
                    else if (ch == 'J')
                        ch = 'y';
                }
                f.datePattern = pattern;
            }
            return f;
        }
        fail(e.line, "\"" + e.value + "\" ist kein Format: erlaubt sind Text, Zahl, Zahl <Stellen>, Datum und "
                                      "Datum <Muster>.");
    }

    BreakdownDef readBreakdown(const SectionBlock& block) const
    {
        BreakdownDef b;
        const Entry& field = require(block, "feld", "Feld");
        b.field = fieldName(field.value);
        b.line = field.line;
        b.heading = b.field;
        for (const Entry& e : block.entries) {
            if (e.key == "ueberschrift") {
                b.heading = e.value;
            } else if (e.key == "wert") {
                const std::string v(definitionTrim(e.value));
                const std::string n = normalised(v);
                if (n == "anzahl")
                    continue;
                if (n.rfind("summe(", 0) == 0 && v.back() == ')') {
                    b.sumField = fieldName(v.substr(v.find('(') + 1, v.size() - v.find('(') - 2));
                    if (!b.sumField.empty())
                        continue;
                }
                fail(e.line, "\"Wert\" ist \"Anzahl\" oder \"Summe(Feld)\".");
            }
        }
        return b;
    }

    std::string_view text_;
    const std::string& file_;
    std::vector<SectionBlock> blocks_;
    int firstLine_ = 0; ///< first line that is neither blank nor a comment; 0 in a file without any
    int lastLine_ = 0;  ///< last such line
};

} // namespace

ReportError definitionError(const std::string& file, int line, const std::string& what)
{
    std::string where = "Fehler in der Berichtsdatei '" + displayPath(file) + "'";
    if (line > 0)
        where += ", Zeile " + std::to_string(line);
    return ReportError(where + ": " + what);
}

ReportError cannotWrite(const std::string& path, const std::string& reason)
{
    return ReportError(cannotWriteMessage(path, reason));
}

std::string_view definitionTrim(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
        s.remove_suffix(1);
    return s;
}

std::string definitionKey(std::string_view name) { return normalised(name); }

ReportDefinition parseReportDefinition(std::string_view text, const std::string& file)
{
    return Parser(text, file).parse();
}

bool ReportDefinition::hasSums() const
{
    return std::any_of(columns.begin(), columns.end(), [](const ColumnDef& c) { return c.sum; });
}

TextTemplate parseTextTemplate(std::string_view text, const std::string& file, int line)
{
    using Kind = TextTemplate::Part::Kind;
    static const std::map<std::string, Kind> builtins = {
        {"titel", Kind::Title},         {"auftrag", Kind::Order}, {"projekt", Kind::Project},
        {"druckdatum", Kind::PrintDate}, {"seite", Kind::Page},    {"seiten", Kind::Pages},
        {"berichtsdatei", Kind::ReportFile}, {"anzahl", Kind::Count},
    };
    TextTemplate t;
    t.line = line;
    std::string literal;
    auto flush = [&] {
        if (!literal.empty())
            t.parts.push_back({Kind::Literal, std::move(literal), {}});
        literal.clear();
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '}' && i + 1 < text.size() && text[i + 1] == '}') {
            literal += '}';
            ++i;
            continue;
        }
        if (c != '{') {
            literal += c;
            continue;
        }
        if (i + 1 < text.size() && text[i + 1] == '{') {
            literal += '{';
            ++i;
            continue;
        }
        const auto close = text.find('}', i + 1);
        if (close == std::string_view::npos)
            throw definitionError(file, line, "Die Klammer '{' wird nicht geschlossen.");
        const std::string_view inner = definitionTrim(text.substr(i + 1, close - i - 1));
        i = close;
        if (inner.empty())
            throw definitionError(file, line, "Leerer Platzhalter \"{}\".");
        flush();
        const auto bar = inner.find('|');
        if (bar != std::string_view::npos && normalised(inner.substr(0, bar)) == "anzahl") {
            // {Anzahl|Objekt|Objekte}: the count and the word that goes with it.
            const std::string_view words = inner.substr(bar + 1);
            const auto second = words.find('|');
            if (second == std::string_view::npos)
                throw definitionError(file, line, "\"{" + std::string(inner) +
                                                      "}\": erwartet wird {Anzahl|Einzahl|Mehrzahl}.");
            t.parts.push_back({Kind::Count, std::string(definitionTrim(words.substr(0, second))),
                               std::string(definitionTrim(words.substr(second + 1)))});
            continue;
        }
        if (bar != std::string_view::npos) {
            const std::string field = fieldName(inner.substr(0, bar));
            if (field.empty())
                throw definitionError(file, line, "\"{" + std::string(inner) + "}\" nennt kein Feld.");
            t.parts.push_back({Kind::Field, field, std::string(definitionTrim(inner.substr(bar + 1)))});
            continue;
        }
        if (inner.front() == '[') {
            t.parts.push_back({Kind::Field, fieldName(inner), {}});
            continue;
        }
        const std::string key = normalised(inner);
        if (key.rfind("summe(", 0) == 0) {
            const auto open = inner.find('(');
            if (inner.back() != ')')
                throw definitionError(file, line, "\"{" + std::string(inner) + "}\": erwartet wird {Summe(Feld)}.");
            const std::string field = fieldName(inner.substr(open + 1, inner.size() - open - 2));
            if (field.empty())
                throw definitionError(file, line, "\"{" + std::string(inner) + "}\" nennt kein Feld.");
            t.parts.push_back({Kind::Sum, field, {}});
            continue;
        }
        const auto it = builtins.find(key);
        if (it != builtins.end())
            t.parts.push_back({it->second, {}, {}});
        else
            t.parts.push_back({Kind::Field, std::string(inner), {}});
    }
    flush();
    return t;
}

} // namespace qi
