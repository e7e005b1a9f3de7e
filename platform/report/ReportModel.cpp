#include "ReportModel.h"

#include "Database.h"
#include "JetCollation.h"
#include "ReportError.h"
#include "SqlName.h"

#include <QDate>
#include <QDateTime>
#include <QLocale>
#include <QString>

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>
#include <sqlite3.h>

namespace qi {

namespace {

/// A statement of the report, finalised on every path.
class Query {
public:
    Query(Database& db, const std::string& sql) : db_(db)
    {
        const char* tail = nullptr;
        rc_ = sqlite3_prepare_v2(db.handle(), sql.c_str(), int(sql.size()), &stmt_, &tail);
        if (rc_ == SQLITE_OK && tail) {
            std::string_view rest(tail);
            rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n;"), rest.size()));
            multiple_ = !rest.empty();
        }
    }
    ~Query() { sqlite3_finalize(stmt_); }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    bool ok() const { return rc_ == SQLITE_OK && stmt_; }
    bool multiple() const { return multiple_; }
    /// The failure of preparing the statement, in German words.
    std::string error() const { return error(rc_); }
    /// The failure of a step with result `rc`, in German words.
    std::string error(int rc) const { return db_.errorFor(rc).description(); }
    /// True when the statement names a table the database lacks.
    bool noSuchTable() const { return std::string_view(sqlite3_errmsg(db_.handle())).rfind("no such table", 0) == 0; }
    sqlite3_stmt* get() const { return stmt_; }

private:
    Database& db_;
    sqlite3_stmt* stmt_ = nullptr;
    int rc_ = SQLITE_OK;
    bool multiple_ = false;
};

struct FieldRef {
    std::string name;
    int line;
};

void addTemplateRefs(const TextTemplate& t, std::vector<FieldRef>& refs)
{
    for (const auto& part : t.parts)
        if (part.kind == TextTemplate::Part::Kind::Field || part.kind == TextTemplate::Part::Kind::Sum)
            refs.push_back({part.text, t.line});
}

void addTemplateRefs(const std::vector<TextTemplate>& ts, std::vector<FieldRef>& refs)
{
    for (const TextTemplate& t : ts)
        addTemplateRefs(t, refs);
}

std::vector<FieldRef> fieldReferences(const ReportDefinition& def)
{
    std::vector<FieldRef> refs;
    for (const SortKey& k : def.sort)
        refs.push_back({k.field, k.line});
    addTemplateRefs(def.pageTitle, refs);
    addTemplateRefs(def.pageHeaderLeft, refs);
    addTemplateRefs(def.pageHeaderRight, refs);
    addTemplateRefs(def.pageFooterLeft, refs);
    addTemplateRefs(def.pageFooterRight, refs);
    addTemplateRefs(def.reportHeader, refs);
    for (const GroupDef& g : def.groups) {
        refs.push_back({g.field, g.line});
        for (const GroupFieldDef& e : g.extraFields)
            refs.push_back({e.field, e.line});
        addTemplateRefs(g.header, refs);
        addTemplateRefs(g.footer, refs);
    }
    for (const ColumnDef& c : def.columns)
        refs.push_back({c.field, c.line});
    addTemplateRefs(def.summary, refs);
    for (const BreakdownDef& b : def.breakdowns) {
        refs.push_back({b.field, b.line});
        if (!b.sumField.empty())
            refs.push_back({b.sumField, b.line});
    }
    std::stable_sort(refs.begin(), refs.end(), [](const FieldRef& a, const FieldRef& b) { return a.line < b.line; });
    return refs;
}

std::string listOf(const std::vector<std::string>& names)
{
    std::string out;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i == 12) {
            out += " …";
            break;
        }
        out += (i ? ", " : "") + names[i];
    }
    return out;
}

int findName(const std::vector<std::string>& names, const std::string& name)
{
    const QString wanted = QString::fromStdString(name);
    for (std::size_t i = 0; i < names.size(); ++i)
        if (QString::fromStdString(names[i]).compare(wanted, Qt::CaseInsensitive) == 0)
            return int(i);
    return -1;
}

const QLocale& german()
{
    static const QLocale locale(QLocale::German, QLocale::Germany);
    return locale;
}

const ValueFormat kTextFormat{};

} // namespace

std::string formatNumber(double value, int decimals, bool grouping)
{
    if (!std::isfinite(value))
        return {};
    if (decimals < 0) {
        // As many places as the value needs, at most six.
        decimals = 0;
        if (std::fabs(value) < 1e15 && value != std::floor(value)) {
            const QString s = QString::number(value, 'f', 6);
            decimals = 6;
            for (qsizetype i = s.size() - 1; decimals > 0 && s[i] == QLatin1Char('0'); --i)
                --decimals;
        }
    }
    const double scale = std::pow(10.0, decimals);
    if (std::round(value * scale) == 0)
        value = 0; // no "-0"
    QLocale locale = german();
    locale.setNumberOptions(grouping ? QLocale::NumberOptions() : QLocale::OmitGroupSeparator);
    return locale.toString(value, 'f', decimals).toStdString();
}

std::string formatDate(std::string_view text, bool isNumber, double number, const std::string& pattern)
{
    const QString qpattern = QString::fromStdString(pattern);
    if (isNumber) {
        const double days = std::floor(number);
        if (std::fabs(days) >= 3e6)
            return std::string(text);
        const QDate date = QDate(1899, 12, 30).addDays(qint64(days));
        const int seconds = int(std::lround((number - days) * 86400.0));
        return QDateTime(date, QTime(0, 0).addSecs(seconds)).toString(qpattern).toStdString();
    }
    const QString s = QString::fromUtf8(text.data(), qsizetype(text.size())).trimmed();
    QDate date;
    QTime time(0, 0);
    for (const char* form : {"dd.MM.yyyy", "d.M.yyyy", "dd.MM.yy"}) {
        date = QDate::fromString(s, QString::fromLatin1(form));
        if (date.isValid()) {
            if (s.size() == 8 && date.year() < 1950)
                date = date.addYears(100);
            break;
        }
    }
    if (!date.isValid() && s.size() >= 10) {
        // The storage form "yyyy-MM-dd" with or without "HH:mm:ss".
        date = QDate::fromString(s.left(10), QStringLiteral("yyyy-MM-dd"));
        if (date.isValid() && s.size() >= 19) {
            const QTime t = QTime::fromString(s.mid(11, 8), QStringLiteral("HH:mm:ss"));
            if (t.isValid())
                time = t;
        }
    }
    if (!date.isValid())
        return std::string(text);
    return QDateTime(date, time).toString(qpattern).toStdString();
}

ReportTable readReportRows(ReportDefinition& def, Database& db)
{
    std::string sql = def.sql;
    while (!sql.empty() && (sql.back() == ';' || std::isspace(static_cast<unsigned char>(sql.back()))))
        sql.pop_back();
    const std::string from = def.sql.empty() ? sqlName(def.source) : "(" + sql + ")";

    if (!def.sql.empty()) {
        // The statement alone first: it must be one query.
        Query statement(db, sql);
        if (statement.ok() && statement.multiple())
            throw definitionError(def.file, def.sourceLine, "\"SQL\" darf nur eine Abfrage enthalten.");
    }
    std::vector<std::string> sourceFields;
    {
        Query probe(db, "SELECT * FROM " + from + " LIMIT 0");
        if (!probe.ok()) {
            if (def.sql.empty() && probe.noSuchTable())
                throw definitionError(def.file, def.sourceLine,
                                      "Die Datenquelle \"" + def.source + "\" gibt es in der Berichtsdatenbank nicht.");
            throw definitionError(def.file, def.sourceLine, "Die Datenquelle kann nicht gelesen werden: " + probe.error());
        }
        const int n = sqlite3_column_count(probe.get());
        for (int i = 0; i < n; ++i)
            sourceFields.emplace_back(sqlite3_column_name(probe.get(), i));
    }

    // Optional columns whose field the source lacks are left out.
    def.columns.erase(std::remove_if(def.columns.begin(), def.columns.end(),
                                     [&](const ColumnDef& c) { return c.optional && findName(sourceFields, c.field) < 0; }),
                      def.columns.end());
    if (def.columns.empty())
        throw definitionError(def.file, 0, "Die Datenquelle hat keines der Felder, die der Bericht zeigt.");

    std::vector<std::string> used;
    for (const FieldRef& ref : fieldReferences(def)) {
        const int at = findName(sourceFields, ref.name);
        if (at < 0)
            throw definitionError(def.file, ref.line,
                                  "Unbekanntes Feld \"" + ref.name + "\". Die Datenquelle hat die Felder " +
                                      listOf(sourceFields) + ".");
        if (findName(used, sourceFields[std::size_t(at)]) < 0)
            used.push_back(sourceFields[std::size_t(at)]);
    }

    std::string select = "SELECT ";
    for (std::size_t i = 0; i < used.size(); ++i)
        select += (i ? ", " : "") + sqlName(used[i]);
    select += " FROM " + from + " AS report_rows";
    std::vector<std::string> order;
    for (const GroupDef& g : def.groups)
        order.push_back(sqlName(sourceFields[std::size_t(findName(sourceFields, g.field))]) + " COLLATE JET");
    for (const SortKey& k : def.sort)
        order.push_back(sqlName(sourceFields[std::size_t(findName(sourceFields, k.field))]) + " COLLATE JET" +
                        (k.descending ? " DESC" : ""));
    for (std::size_t i = 0; i < order.size(); ++i)
        select += (i ? ", " : " ORDER BY ") + order[i];

    ReportTable table(used);
    Query query(db, select);
    if (!query.ok())
        throw definitionError(def.file, def.sourceLine, "Die Datenquelle kann nicht gelesen werden: " + query.error());
    sqlite3_stmt* st = query.get();
    const int n = int(used.size());
    for (;;) {
        const int rc = sqlite3_step(st);
        if (rc == SQLITE_DONE)
            break;
        if (rc != SQLITE_ROW)
            throw definitionError(def.file, def.sourceLine,
                                  "Die Datenquelle kann nicht gelesen werden: " + query.error(rc));
        for (int i = 0; i < n; ++i) {
            ReportTable::Kind kind = ReportTable::Kind::Text;
            switch (sqlite3_column_type(st, i)) {
            case SQLITE_NULL:
                table.append(ReportTable::Kind::Null, {});
                continue;
            case SQLITE_INTEGER:
                kind = ReportTable::Kind::Integer;
                break;
            case SQLITE_FLOAT:
                kind = ReportTable::Kind::Real;
                break;
            default:
                break;
            }
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(st, i));
            table.append(kind, std::string_view(text ? text : "", std::size_t(sqlite3_column_bytes(st, i))));
        }
    }
    return table;
}

ReportModel::ReportModel(ReportDefinition definition, ReportTable table, ReportContext context)
    : def_(std::move(definition)), table_(std::move(table)), ctx_(std::move(context))
{
    for (const ColumnDef& c : def_.columns)
        columnFields_.push_back(table_.fieldIndex(c.field));
    for (const GroupDef& g : def_.groups) {
        groupFields_.push_back(table_.fieldIndex(g.field));
        std::vector<int> extras;
        for (const GroupFieldDef& e : g.extraFields)
            extras.push_back(table_.fieldIndex(e.field));
        groupExtraFields_.push_back(std::move(extras));
    }
    makeGroups();
    makeBreakdowns();
}

void ReportModel::makeGroups()
{
    groups_.assign(def_.groups.size(), {});
    const std::size_t rows = rowCount();
    for (std::size_t r = 0; r < rows; ++r) {
        // A change in a level's field starts a new group there and in every inner level.
        std::size_t changed = groups_.size();
        for (std::size_t level = 0; level < groups_.size() && r > 0; ++level)
            if (!table_.sameValue(r - 1, r, std::size_t(groupFields_[level]))) {
                changed = level;
                break;
            }
        for (std::size_t level = 0; level < groups_.size(); ++level) {
            if (r == 0 || level >= changed)
                groups_[level].push_back({r, 0});
            ++groups_[level].back().count;
        }
    }
}

void ReportModel::makeBreakdowns()
{
    struct JetLess {
        bool operator()(const std::string& a, const std::string& b) const { return jetCompare(a, b) < 0; }
    };
    for (const BreakdownDef& b : def_.breakdowns) {
        const int field = table_.fieldIndex(b.field);
        const int sumField = b.sumField.empty() ? -1 : table_.fieldIndex(b.sumField);
        std::map<std::string, double, JetLess> amounts;
        for (std::size_t r = 0; r < rowCount(); ++r) {
            const std::string key = format(r, field, formatOfField(field));
            amounts[key] += sumField < 0 ? 1.0 : table_.number(r, std::size_t(sumField));
        }
        std::vector<BreakdownLine> lines;
        const ValueFormat& amountFormat = sumField < 0 ? kTextFormat : formatOfField(sumField);
        for (const auto& [value, amount] : amounts)
            lines.push_back({value.empty() ? "(ohne Angabe)" : value,
                             formatNumber(amount, amountFormat.kind == ValueFormat::Kind::Number
                                                      ? amountFormat.decimals
                                                      : -1),
                             amount});
        breakdowns_.push_back(std::move(lines));
    }
}

std::string ReportModel::format(std::size_t row, int field, const ValueFormat& f) const
{
    const auto fi = std::size_t(field);
    const ReportTable::Kind kind = table_.kind(row, fi);
    if (kind == ReportTable::Kind::Null)
        return {};
    switch (f.kind) {
    case ValueFormat::Kind::Number:
        if (table_.isNumeric(row, fi))
            return formatNumber(table_.number(row, fi), f.decimals);
        break;
    case ValueFormat::Kind::Date:
        return formatDate(table_.text(row, fi), kind == ReportTable::Kind::Integer || kind == ReportTable::Kind::Real,
                          table_.number(row, fi), f.datePattern);
    case ValueFormat::Kind::Text:
        if (kind == ReportTable::Kind::Real)
            return formatNumber(table_.number(row, fi), -1, false);
        break;
    }
    return std::string(table_.text(row, fi));
}

const ValueFormat& ReportModel::formatOfField(int field) const
{
    for (std::size_t c = 0; c < columnFields_.size(); ++c)
        if (columnFields_[c] == field)
            return def_.columns[c].format;
    return kTextFormat;
}

std::string ReportModel::cellText(std::size_t row, std::size_t column) const
{
    return format(row, columnFields_[column], def_.columns[column].format);
}

bool ReportModel::cellIsNumber(std::size_t row, std::size_t column) const
{
    const auto f = std::size_t(columnFields_[column]);
    const ReportTable::Kind kind = table_.kind(row, f);
    if (kind == ReportTable::Kind::Integer || kind == ReportTable::Kind::Real)
        return def_.columns[column].format.kind != ValueFormat::Kind::Date;
    return def_.columns[column].format.kind == ValueFormat::Kind::Number && table_.isNumeric(row, f);
}

double ReportModel::cellNumber(std::size_t row, std::size_t column) const
{
    return table_.number(row, std::size_t(columnFields_[column]));
}

std::string ReportModel::fieldText(std::size_t row, int field) const { return format(row, field, formatOfField(field)); }

double ReportModel::sum(int field, RowRange scope) const
{
    double total = 0;
    for (std::size_t r = scope.first; r < scope.first + scope.count; ++r)
        total += table_.number(r, std::size_t(field));
    return total;
}

double ReportModel::columnSumValue(std::size_t column, RowRange scope) const
{
    return sum(columnFields_[column], scope);
}

std::string ReportModel::columnSum(std::size_t column, RowRange scope) const
{
    const ValueFormat& f = def_.columns[column].format;
    return formatNumber(columnSumValue(column, scope), f.kind == ValueFormat::Kind::Number ? f.decimals : -1);
}

std::string ReportModel::evaluate(const TextTemplate& text, RowRange scope, int page, int pages) const
{
    using Kind = TextTemplate::Part::Kind;
    std::string out;
    for (const auto& part : text.parts) {
        switch (part.kind) {
        case Kind::Literal:
            out += part.text;
            break;
        case Kind::Field: {
            std::string value;
            if (scope.count > 0) {
                const int field = table_.fieldIndex(part.text);
                value = format(scope.first, field, formatOfField(field));
            }
            out += value.find_first_not_of(' ') == std::string::npos && !part.fallback.empty() ? part.fallback : value;
            break;
        }
        case Kind::Count:
            out += formatNumber(double(scope.count), 0);
            if (!part.text.empty() || !part.fallback.empty())
                out += " " + (scope.count == 1 ? part.text : part.fallback);
            break;
        case Kind::Sum: {
            const int field = table_.fieldIndex(part.text);
            const ValueFormat& f = formatOfField(field);
            out += formatNumber(sum(field, scope), f.kind == ValueFormat::Kind::Number ? f.decimals : -1);
            break;
        }
        case Kind::Title:
            out += def_.title;
            break;
        case Kind::Order:
            out += ctx_.orderName;
            break;
        case Kind::Project:
            out += ctx_.projectFolder;
            break;
        case Kind::PrintDate:
            out += ctx_.printDate;
            break;
        case Kind::Page:
            if (pages > 0)
                out += std::to_string(page);
            break;
        case Kind::Pages:
            if (pages > 0)
                out += std::to_string(pages);
            break;
        case Kind::ReportFile:
            out += ctx_.reportFile;
            break;
        }
    }
    return out;
}

} // namespace qi
