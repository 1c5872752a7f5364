#include "lumetra/lumetra"

#include "lumetra/catalogue/dye_tables.h"

// Built in this order when the library is loaded and destroyed in the opposite one.
QMap<QString, FLUO_DYE_TYPE> Lumetra::g_mapFluo;
QVector<QString> Lumetra::m_vecSldFluo;
bool Lumetra::bFluoDyeTypeInit = false;

void Lumetra::InitFluoDyeType() {
    if (bFluoDyeTypeInit)
        return;
    bFluoDyeTypeInit = true;

    for (const auto& row : lumetra::catalogueTable)
        g_mapFluo[QString::fromUtf8(row.name)] = {row.excitation, row.emission, row.colour.red,
                                                  row.colour.green, row.colour.blue};
    for (const auto& name : lumetra::sliderTable)
        m_vecSldFluo.append(QString::fromUtf8(name));
}
