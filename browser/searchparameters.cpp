#include "browser/searchparameters.h"

#include "search/entrysearch.h"
#include "search/optiondialog.h"
#include "store/rowvalue.h"

using namespace Qt::StringLiterals;

SearchParameters chosenParameters(OptionDialog &dialog, const QList<QSqlRecord> &classes)
{
    SearchParameters parameters;
    const QSqlRecord model = classes.value(dialog.selectedModelNumber() - 1);
    parameters.modelId = rowId(model, u"id"_s);
    parameters.modelName = rowText(model, u"modelname"_s);
    parameters.once = dialog.repeatChoice() == u"nur einmal"_s;
    parameters.picturesOnly = dialog.picturesChoice() == u"ja"_s;
    parameters.orderClause = orderClause(dialog.sortChoice(), parameters.once);
    return parameters;
}
