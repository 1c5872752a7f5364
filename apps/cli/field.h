// Fields of a data set, one by one.
#pragma once

#include "apps/cli/file_renderer.h"
#include "apps/cli/pattern.h"

#include <QString>

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace lumetra {

/// One place of the specimen: a file for each channel, or one that holds all of them.
struct Field {
    QString name; ///< The texts of the placeholders, in their order, between slashes.
    Placeholders placeholders;
    RenderJob job;
    QString problem;        ///< Why it cannot be rendered; empty if nothing is known against it.
    std::size_t number = 0; ///< Of the data set, from 0.
};

/// Where the fields of a data set come from.
class FieldSource {
public:
    virtual ~FieldSource() = default;
    virtual std::size_t size() const = 0;

    /// Makes a field, from any thread. A million of them are never there at once.
    virtual Field field(std::size_t number) const = 0;

    /// The names of the files that a field is made of.
    virtual QStringList inputs(std::size_t number) const;

    /// To be called before fields from `first` to before `last` are made one after another.
    virtual void prepare(std::size_t first, std::size_t last);
};

/// Fields of a data set, or a part of them, in their order.
class FieldSet {
public:
    FieldSet() = default;
    explicit FieldSet(std::shared_ptr<FieldSource> source);

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    Field operator[](std::size_t i) const { return source_->field(first_ + i); }
    QStringList inputs(std::size_t i) const { return source_->inputs(first_ + i); }
    Field front() const { return (*this)[0]; }
    Field back() const { return (*this)[size_ - 1]; }

    bool contains(std::size_t number) const { return number >= first_ && number - first_ < size_; }

    /// Part K of N of the fields; all of them if `shard` is empty.
    /// @throws UsageError for anything else than `K/N`.
    FieldSet part(const QString& shard) const;

private:
    std::shared_ptr<FieldSource> source_;
    std::size_t first_ = 0, size_ = 0;
};

/// What is wrong with fields that were looked at. Safe from any thread.
class FieldProblems {
public:
    /// Notes why a field cannot be rendered.
    void add(const Field& field);

    /// The problem that is known against a field: noted, or its own.
    QString of(const Field& field) const;

    /// How many fields of a set have one.
    std::size_t count(const FieldSet& fields) const;

    /// Prints the fields of a set that have one, one per line, and their number.
    void print(const FieldSet& fields) const;

private:
    mutable std::mutex mutex_;
    std::map<std::size_t, std::pair<QString, QString>> problems_; ///< Names and reasons, by number.
};

/// How many fields there are, the first and the last of them: "60 fields, A01_s1 to P24_s4".
QString fieldList(const FieldSet& fields);

} // namespace lumetra
