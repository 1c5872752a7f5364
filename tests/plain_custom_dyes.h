// The reading of custom dyes spelt out.
#pragma once

#include <QColor>
#include <QMap>
#include <QSettings>

using Dyes = QMap<QString, QColor>;

/// Reads a file entry by entry, as many as it claims.
inline Dyes readPlainly(const QString& path) {
    const QSettings settings(path, QSettings::IniFormat);
    Dyes dyes;
    for (int n = 1; n <= settings.value("Number", "").toInt(); ++n) {
        const QString group = "DyeType" + QString::number(n);
        dyes[settings.value(group + "/Name", "").toString()] =
            settings.value(group + "/Color", "").value<QColor>();
    }
    return dyes;
}
