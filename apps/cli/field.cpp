#include "apps/cli/field.h"

#include "apps/common/error.h"
#include "apps/common/messages.h"

#include <QRegularExpression>

#include <algorithm>

namespace lumetra {

QStringList FieldSource::inputs(std::size_t number) const { return inputNames(field(number).job); }

void FieldSource::prepare(std::size_t /*first*/, std::size_t /*last*/) {}

FieldSet::FieldSet(std::shared_ptr<FieldSource> source)
    : source_(std::move(source)), size_(source_->size()) {}

FieldSet FieldSet::part(const QString& shard) const {
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,6})/([0-9]{1,6})$"));
    const auto match = form.match(shard.isEmpty() ? QStringLiteral("1/1") : shard);
    const std::size_t number = match.captured(1).toUInt();
    const std::size_t parts = match.captured(2).toUInt();
    if (number < 1 || number > parts)
        throw UsageError(QStringLiteral("--shard %1 is not K/N with K from 1 to N").arg(shard));
    const auto start = [&](std::size_t k) { return size_ * k / parts; };
    FieldSet part;
    part.source_ = source_;
    part.first_ = first_ + start(number - 1);
    part.size_ = start(number) - start(number - 1);
    if (part.size_ > 0)
        source_->prepare(part.first_, part.first_ + part.size_);
    return part;
}

void FieldProblems::add(const Field& field) {
    const std::lock_guard lock(mutex_);
    problems_[field.number] = {field.name, field.problem};
}

QString FieldProblems::of(const Field& field) const {
    const std::lock_guard lock(mutex_);
    const auto known = problems_.find(field.number);
    return known == problems_.end() ? field.problem : known->second.second;
}

std::size_t FieldProblems::count(const FieldSet& fields) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(
        std::count_if(problems_.begin(), problems_.end(),
                      [&](const auto& problem) { return fields.contains(problem.first); }));
}

void FieldProblems::print(const FieldSet& fields) const {
    const std::size_t problems = count(fields);
    const std::lock_guard lock(mutex_);
    for (const auto& [number, problem] : problems_)
        if (fields.contains(number))
            printError(QStringLiteral("field %1: %2").arg(problem.first, problem.second));
    if (problems > 0)
        printError(QStringLiteral("%1 of %2 fields failed").arg(problems).arg(fields.size()));
}

QString fieldList(const FieldSet& fields) {
    QString line = plural(fields.size(), QStringLiteral("field"));
    // A pattern without placeholders has one field without a name.
    if (!fields.empty() && !fields.front().name.isEmpty())
        line += QStringLiteral(", ") + fields.front().name;
    if (fields.size() > 1)
        line += QStringLiteral(" to ") + fields.back().name;
    return line;
}

} // namespace lumetra
