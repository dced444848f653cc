#include "engine/designsection.h"

#include "db/numbers.h"
#include "engine/designlevels.h"
#include "engine/session.h"
#include "engine/statementcache.h"

namespace engine {

namespace {

QString chainageLine(float chainage, const QString& text) {
  return QStringLiteral("Chainage : ") + db::floatText(chainage) + QLatin1Char('>') + text;
}

int columnIndex(const db::Statement& statement, QLatin1String name) {
  for (int i = 0; i < statement.columnCount(); ++i)
    if (statement.columnName(i).compare(name, Qt::CaseInsensitive) == 0) return i;
  return -1;
}

// Evaluates a stored formula. When the evaluator refuses it for its length (it then counts as
// 0), the error list names the formula's row and why, once per run. row: "the Offset formula of
// DesignExp row Serial 3".
float evaluateStored(EngineSession& session, float chainage, const QString& formula,
                     const QString& row) {
  modVariables& variables = session.variables();
  const float value = variables.EvaluateFormula(formula);
  const FormulaRefusal refusal = variables.refusal();
  if (refusal == FormulaRefusal::None || !session.design().RefusedFormulas.insert(row).second)
    return value;
  const QString why =
      refusal == FormulaRefusal::FormulaTooLong
          ? QStringLiteral(" is %1 characters long, more than the %2 a formula may have")
                .arg(formula.size())
                .arg(kMaxFormulaLength)
          : QStringLiteral(" grows beyond %1 characters while it is worked out")
                .arg(kMaxWorkingTextLength);
  QString text = row + why + QStringLiteral("; it counts as 0.");
  text[0] = text[0].toUpper();
  session.reporter().ShowError(chainageLine(chainage, text));
  return value;
}

// The first column of the one row of an aggregate, or nothing when it is null.
std::optional<float> aggregate(db::Statement& statement) {
  if (!statement.step()) return std::nullopt;
  return statement.optionalMeasure(0);
}

void loadQtyDefine(EngineSession& session, float chainage) {
  DesignState& d = session.design();
  StatementUse st(cachedStatement(d.qtyDefineRows, session.connection(),
                                  QStringLiteral("SELECT * FROM QtyDefine WHERE DesignID=1"),
                                  QStringLiteral("Reading the quantity columns (QtyDefine)")));
  const int colNo = columnIndex(*st, QLatin1String("ColNo"));
  const int qType = columnIndex(*st, QLatin1String("QType"));
  const int startOffset = columnIndex(*st, QLatin1String("StartOffset"));
  const int endOffset = columnIndex(*st, QLatin1String("EndOffset"));
  const int lrb = columnIndex(*st, QLatin1String("LRB"));
  if (colNo < 0 || qType < 0 || startOffset < 0 || endOffset < 0 || lrb < 0)
    throw db::Error(
        QStringLiteral("Reading the quantity columns: QtyDefine lacks one of the "
                       "columns ColNo, QType, StartOffset, EndOffset, LRB"));
  d.QtyDefine.clear();
  while (st->step()) {
    QtyDefineRow row;
    row.ColNo = static_cast<std::int16_t>(st->int64(colNo));
    row.QType = st->text(qType);
    const QString name = QStringLiteral(" formula of QtyDefine row ColNo ") + st->text(colNo);
    row.StartOffset = evaluateStored(session, chainage, st->text(startOffset),
                                     QStringLiteral("the StartOffset") + name);
    row.EndOffset = evaluateStored(session, chainage, st->text(endOffset),
                                   QStringLiteral("the EndOffset") + name);
    row.LRB = st->text(lrb);
    d.QtyDefine.push_back(row);
  }
}

// Finds the DesignDetails row in force at chainage and loads its columns as formula variables,
// then the quantity columns whose offsets are formulas over them. False when no section can be
// computed (the error list says why).
bool loadDetails(EngineSession& session, float chainage) {
  DesignState& d = session.design();
  db::Connection& connection = session.connection();
  const std::int32_t section = session.sectionId();

  d.DetailsChainage = -1;
  d.NextDetailsChainage = -1;
  {
    StatementUse st(cachedStatement(
        d.detailsAtOrBefore, connection,
        QStringLiteral("Select max(Chainage) FROM DesignDetails WHERE SectionID=? AND Chainage<=?"),
        QStringLiteral("Finding the design details in force")));
    st->bindKey(1, section).bindDouble(2, db::measureRange(chainage).high);
    if (auto at = aggregate(*st)) d.DetailsChainage = *at;
  }
  {
    StatementUse st(cachedStatement(
        d.detailsAfter, connection,
        QStringLiteral("Select min(Chainage) FROM DesignDetails WHERE SectionID=? AND Chainage>?"),
        QStringLiteral("Finding the next design details")));
    st->bindKey(1, section).bindDouble(2, db::measureRange(chainage).high);
    if (auto next = aggregate(*st)) d.NextDetailsChainage = *next;
  }
  if (d.DetailsChainage == -1 && d.NextDetailsChainage == -1) {
    session.reporter().ShowError(
        chainageLine(chainage, QStringLiteral("no design details or profile values entered.")));
    return false;
  }
  // Before the first row, the first row applies.
  if (d.DetailsChainage == -1) d.DetailsChainage = d.NextDetailsChainage;
  // The last row applies to the end of the section.
  if (d.NextDetailsChainage == -1) {
    std::optional<float> last;
    if (session.quantityChainagesOutOfDate() && connection.isReadOnly()) {
      // The stored chainages could not be brought in line: the surveyed ones count, as they
      // would after SyncQuantityChainages.
      StatementUse st(
          cachedStatement(d.lastSurveyedChainage, connection,
                          QStringLiteral("Select max(Chainage) FROM Initial WHERE SectionID=?"),
                          QStringLiteral("Finding the last surveyed chainage")));
      st->bindKey(1, section);
      last = aggregate(*st);
    }
    if (!last) {
      StatementUse st(
          cachedStatement(d.lastQuantityChainage, connection,
                          QStringLiteral("Select max(Chainage) FROM DesignQty WHERE SectionID=?"),
                          QStringLiteral("Finding the last quantity chainage")));
      st->bindKey(1, section);
      last = aggregate(*st);
    }
    if (!last) {
      session.reporter().ShowError(chainageLine(
          chainage, QStringLiteral("Unknown Error encountered. This is inconceivable")));
      return false;
    }
    d.NextDetailsChainage = *last + 1.0f;
  }

  modVariables& variables = session.variables();
  variables.ResetFormulaVariables();
  {
    StatementUse st(cachedStatement(
        d.detailsRow, connection,
        QStringLiteral(
            "SELECT * FROM DesignDetails WHERE SectionID=? AND Chainage BETWEEN ? AND ?"),
        QStringLiteral("Reading the design details")));
    st->bindKey(1, section).bindMeasureRange(2, d.DetailsChainage);
    if (st->step()) {
      for (int i = 0; i < st->columnCount(); ++i) {
        const QString name = st->columnName(i);
        if (name.compare(QLatin1String("SectionID"), Qt::CaseInsensitive) == 0 ||
            name.compare(QLatin1String("ID"), Qt::CaseInsensitive) == 0 ||
            name.compare(QLatin1String("Chainage"), Qt::CaseInsensitive) == 0)
          continue;
        variables.SetFormulaVariable(name, st->measure(i));
      }
    }
  }
  d.DetailsReload = false;
  // The offsets see the details columns only: CL and the points are not set yet.
  loadQtyDefine(session, chainage);
  return true;
}

}  // namespace

void ResetDesignCache(EngineSession& session) {
  session.design().DetailsReload = true;
  session.design().RefusedFormulas.clear();
  session.levels().Reload = true;
  if (session.quantityChainagesOutOfDate() && !session.connection().isReadOnly()) {
    SyncQuantityChainages(session);
    session.clearQuantityChainagesMark();
  }
}

void GetDesignSection(EngineSession& session, float chainage, float centreLevel, float& LP_Off,
                      float& LP_Val, float& RP_Off, float& RP_Val, int& nLeft, int& nRight) {
  DesignState& d = session.design();
  if (d.DetailsReload || chainage >= d.NextDetailsChainage) {
    if (!loadDetails(session, chainage)) return;
  }

  modVariables& variables = session.variables();
  variables.SetFormulaVariable(QStringLiteral("CL"), centreLevel);
  nLeft = 0;
  nRight = 0;
  d.LeftDesignPoints.clear();
  d.RightDesignPoints.clear();
  // A point's variables are set only after both its formulas are evaluated: a Value formula
  // sees the offset of the previous point of its side, not its own.
  for (const DesignProfileRow& row : session.designProfile()) {
    const QString name = QStringLiteral(" formula of DesignExp row Serial ") + row.Serial;
    const auto offsetOf = [&] {
      return evaluateStored(session, chainage, row.Offset, QStringLiteral("the Offset") + name);
    };
    const auto valueOf = [&] {
      return evaluateStored(session, chainage, row.Value, QStringLiteral("the Value") + name);
    };
    if (row.LCR == QLatin1String("L")) {
      LP_Off = offsetOf();
      LP_Val = valueOf();
      variables.SetFormulaVariable(QStringLiteral("LP_Off"), LP_Off);
      variables.SetFormulaVariable(QStringLiteral("LP_Val"), LP_Val);
      d.LeftDesignPoints.push_back({LP_Off, LP_Val});
      ++nLeft;
    } else if (row.LCR == QLatin1String("R")) {
      RP_Off = offsetOf();
      RP_Val = valueOf();
      variables.SetFormulaVariable(QStringLiteral("RP_Off"), RP_Off);
      variables.SetFormulaVariable(QStringLiteral("RP_Val"), RP_Val);
      d.RightDesignPoints.push_back({RP_Off, RP_Val});
      ++nRight;
    } else if (row.LCR == QLatin1String("C")) {
      // A centre point stands on both sides at the offset each side already has.
      const float v = valueOf();
      LP_Val = v;
      RP_Val = v;
      d.LeftDesignPoints.push_back({LP_Off, v});
      d.RightDesignPoints.push_back({RP_Off, v});
      variables.SetFormulaVariable(QStringLiteral("LP_Off"), LP_Off);
      variables.SetFormulaVariable(QStringLiteral("LP_Val"), LP_Val);
      variables.SetFormulaVariable(QStringLiteral("RP_Off"), RP_Off);
      variables.SetFormulaVariable(QStringLiteral("RP_Val"), RP_Val);
      ++nLeft;
      ++nRight;
    } else {
      session.reporter().ShowError(chainageLine(
          chainage, QStringLiteral("Error encountered in design formula. Unrecognized value.")));
    }
  }
  d.nLeft = nLeft;
  d.nRight = nRight;
}

}  // namespace engine
