// The reading of custom dyes spelt out.
#pragma once

#include <QColor>
#include <QFile>
#include <QMap>
#include <QSettings>

using Dyes = QMap<QString, QColor>;

/// Reads a file entry by entry, as many as it claims. Text that can be UTF-8 is taken for it.
inline Dyes readPlainly(const QString& path) {
    QSettings settings(path, QSettings::IniFormat);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QFile file(path);
    const QByteArray text = file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    if (QString::fromUtf8(text).toUtf8() == text)
        settings.setIniCodec("UTF-8");
#endif
    Dyes dyes;
    for (int n = 1; n <= settings.value("Number", "").toInt(); ++n) {
        const QString group = "DyeType" + QString::number(n);
        dyes[settings.value(group + "/Name", "").toString()] =
            settings.value(group + "/Color", "").value<QColor>();
    }
    return dyes;
}
