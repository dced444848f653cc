#include "drawing/pageengine.h"
#include "drawing/paintersurface.h"
#include "drawing/previewlayout.h"
#include "drawing/recordingsurface.h"

#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using drawing::PageEngine;
using drawing::RecordingSurface;

// Also remembers the interior each box was drawn with.
class FillRecorder : public RecordingSurface {
 public:
  void drawBox(float x1, float y1, float x2, float y2, int fillStyle) override {
    fills.push_back(fillStyle);
    RecordingSurface::drawBox(x1, y1, x2, y2, fillStyle);
  }
  void drawSolidBox(float x1, float y1, float x2, float y2, int fillStyle) override {
    fills.push_back(fillStyle);
    RecordingSurface::drawSolidBox(x1, y1, x2, y2, fillStyle);
  }
  std::vector<int> fills;
};

struct PolyCase {
  int numbers;
  std::size_t vertices;  // 0: nothing drawn
};

class PolyLineTest : public ::testing::TestWithParam<PolyCase> {};

TEST_P(PolyLineTest, DrawsOneSegmentPerFollowingWholePoint) {
  const PolyCase& k = GetParam();
  std::vector<float> points;
  for (int i = 0; i < k.numbers; ++i) points.push_back(static_cast<float>(i));
  RecordingSurface surface;
  PageEngine engine(surface);
  engine.pSetPage(100, 100);
  engine.pDrawPolyLine(points);
  EXPECT_EQ(surface.pages().front().primitives.size(), k.vertices ? 1u : 0u);
  const auto vertices = drawing::polylineVertices(points);
  ASSERT_EQ(vertices.size(), k.vertices);
  if (k.vertices) {
    EXPECT_EQ(vertices.back(), QPointF(points[k.vertices * 3 - 3], points[k.vertices * 3 - 2]));
  }
}

INSTANTIATE_TEST_SUITE_P(Numbers, PolyLineTest,
                         ::testing::Values(PolyCase{5, 0}, PolyCase{6, 2}, PolyCase{8, 2},
                                           PolyCase{9, 3}));

TEST(PageEngine, SolidBoxLeavesTheFillTransparentForTheNextBox) {
  FillRecorder surface;
  PageEngine engine(surface);
  engine.pSetPage(100, 100);
  engine.pSetLayer(engine.pCreateLayer(0, 0xFFFF00, 6, 1, 0, QStringLiteral("Arial"), 8));
  engine.pDrawBox(0, 0, 1, 1);
  engine.pDrawSolidBox(0, 0, 1, 1);
  engine.pDrawBox(0, 0, 1, 1);
  EXPECT_EQ(surface.fills, (std::vector<int>{1, 6, 1}));
}

TEST(PageEngine, EveryPageStartsWithAnEmptyLayerTable) {
  RecordingSurface surface;
  PageEngine engine(surface);
  for (int page = 0; page < 2; ++page) {
    engine.pSetPage(100, 100);
    std::vector<int> indices;
    for (int i = 0; i < 11; ++i)
      indices.push_back(engine.pCreateLayer(0, 0, 0, 1, 0, QStringLiteral("Arial"), 8));
    EXPECT_EQ(indices.front(), 0);
    EXPECT_EQ(indices[9], 9);
    EXPECT_EQ(indices.back(), -1);  // the eleventh does not fit
    engine.pSetLayer(3);
    engine.pSetLayer(-1);  // refused layers leave the current one in force
    engine.pDrawLine(0, 0, 1, 1);
  }
  ASSERT_EQ(surface.pages().size(), 2u);
  for (const auto& page : surface.pages()) {
    EXPECT_EQ(page.layers.size(), 10u);
    EXPECT_EQ(page.primitives.front().layer, 3);
  }
}

TEST(PageEngine, TextLandsOnTheSameGridOnScreenAndPaper) {
  // 1 unit is 22.677 screen pixels; the printer's resolution scales it before rounding.
  EXPECT_EQ(drawing::textPixel(1.0f, 96.0), 23);
  EXPECT_EQ(drawing::textPixel(1.0f, 600.0), 142);
  EXPECT_EQ(drawing::textPixel(-0.5f, 96.0), -11);
  EXPECT_EQ(drawing::effectiveTextFormat(0), drawing::kTextCentre | drawing::kTextBottom);
  EXPECT_EQ(drawing::effectiveTextFormat(17), 17);
}

// The inked rectangle of an image.
QRect inkOf(const QImage& image) {
  QRect ink;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qGray(image.pixel(x, y)) < 128) ink |= QRect(x, y, 1, 1);
  return ink;
}

// One smoke render: text really is turned and wrapped on a painted page.
TEST(PainterSurface, TurnsAndWrapsText) {
  auto render = [](auto draw) {
    drawing::ImageSurface surface(96.0);
    PageEngine engine(surface);
    engine.pSetPage(120, 120);
    engine.pSetLayer(engine.pCreateLayer(0, 0, 0, 1, 0, QStringLiteral("Arial"), 10));
    draw(engine);
    surface.endPage();
    return inkOf(surface.images().front());
  };
  const QRect upward =
      render([](PageEngine& e) { e.pDrawText(5, 15, QStringLiteral("152.250"), 90); });
  const QRect level =
      render([](PageEngine& e) { e.pDrawText(5, 15, QStringLiteral("152.250"), 0); });
  EXPECT_GT(upward.height(), 2 * upward.width());
  EXPECT_LT(upward.bottom(), drawing::textPixel(15, 96.0));  // it runs up from its point
  EXPECT_GT(level.width(), 2 * level.height());

  const QString title = QStringLiteral("DESIGNED LEVEL IN METER");
  const QRect wrapped = render([&](PageEngine& e) { e.pDrawHText(2, 2, 5.5f, 6, title, 17); });
  const QRect single = render([&](PageEngine& e) { e.pDrawHText(2, 2, 15, 6, title, 1); });
  EXPECT_GT(wrapped.height(), 2 * single.height());
  const int middle = (drawing::textPixel(2, 96.0) + drawing::textPixel(5.5f, 96.0)) / 2;
  EXPECT_NEAR(wrapped.center().x(), middle, 3);
}

// A PDF goes on from page to page: a page that ends with turned labels does not turn the next.
TEST(PdfSurface, EveryPageStartsUnturnedAtItsCorner) {
  const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
  if (pdftotext.isEmpty()) GTEST_SKIP() << "pdftotext (poppler-utils) is not installed";
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("pages.pdf"));
  {
    drawing::PdfSurface surface(path);
    PageEngine engine(surface);
    for (const char* word : {"first", "second"}) {
      engine.pSetPage(100, 100);
      engine.pSetLayer(engine.pCreateLayer(0, 0, 0, 1, 0, QStringLiteral("Arial"), 8));
      engine.pDrawText(1, 1, QString::fromLatin1(word), 0);
      engine.pDrawLine(1, 3, 2, 3);
      engine.pDrawText(5, 10, QStringLiteral("152.250"), 90);
    }
    engine.pSetPage(100, 100);  // ends the second page
    ASSERT_TRUE(surface.finish());
  }
  QProcess p;
  p.start(pdftotext, {QStringLiteral("-bbox"), QStringLiteral("-f"), QStringLiteral("2"),
                      QStringLiteral("-l"), QStringLiteral("2"), path, QStringLiteral("-")});
  ASSERT_TRUE(p.waitForFinished(30000));
  const QString html = QString::fromUtf8(p.readAllStandardOutput());
  const QRegularExpressionMatch m =
      QRegularExpression(QStringLiteral(R"re(xMin="([\d.]+)" yMin="([\d.]+)"[^>]*>second<)re"))
          .match(html);
  ASSERT_TRUE(m.hasMatch()) << html.toStdString();
  // One unit from the corner: 6 mm, 17 points.
  EXPECT_NEAR(m.captured(1).toDouble(), 17.0, 1.5);
  EXPECT_NEAR(m.captured(2).toDouble(), 17.0, 1.5);
}

// A page printed in tiles is drawn shifted; turned labels must not lose the shift.
class ShiftedSurface : public drawing::PainterSurface {
 public:
  explicit ShiftedSurface(QImage& image) : PainterSurface(96.0), m_image(image) {}
  void beginPage(int, int) override {
    m_painter.begin(&m_image);
    setOrigin(QPointF(-100, -50));
    setPainter(&m_painter);
  }
  void endPage() override {
    setPainter(nullptr);
    m_painter.end();
  }

 private:
  QImage& m_image;
  QPainter m_painter;
};

TEST(PainterSurface, TileOriginHoldsThroughTurnedText) {
  QImage image(400, 400, QImage::Format_RGB32);
  image.fill(Qt::white);
  {
    ShiftedSurface surface(image);
    PageEngine engine(surface);
    engine.pSetPage(200, 200);
    engine.pSetLayer(engine.pCreateLayer(0, 0, 0, 3, 0, QStringLiteral("Arial"), 8));
    engine.pDrawText(12, 12, QStringLiteral("1"), 90);
    engine.pDrawLine(10, 5, 12, 5);  // 226.8 to 272.2 px across, 113.4 down, less the shift
    surface.endPage();
  }
  const QRect ink = inkOf(image.copy(0, 0, 400, 100));
  EXPECT_NEAR(ink.left(), 227 - 100, 2);
  EXPECT_NEAR(ink.right(), 272 - 100, 2);
  EXPECT_NEAR(ink.center().y(), 113 - 50, 2);
}

struct LayoutCase {
  const char* name;
  int width, height, pageWidth, pageHeight;
  bool hBar, vBar;
  int pageLeft, pageTop, hMaximum;
};

class PreviewLayoutTest : public ::testing::TestWithParam<LayoutCase> {};

TEST_P(PreviewLayoutTest, CentresWhatFitsAndScrollsTheRest) {
  const LayoutCase& k = GetParam();
  const auto p = drawing::placePreview(k.width, k.height, k.pageWidth, k.pageHeight);
  ASSERT_TRUE(p);
  EXPECT_EQ(p->horizontal.visible, k.hBar);
  EXPECT_EQ(p->vertical.visible, k.vBar);
  EXPECT_EQ(p->pageLeft, k.pageLeft);
  EXPECT_EQ(p->pageTop, k.pageTop);
  EXPECT_EQ(p->horizontal.maximum, k.hMaximum);
  EXPECT_EQ(p->barLeft, k.width - 260);
  EXPECT_EQ(p->barTop, k.height - 260);
}

INSTANTIATE_TEST_SUITE_P(
    Pages, PreviewLayoutTest,
    ::testing::Values(LayoutCase{"Smaller", 6000, 5000, 4000, 3000, false, false, 1000, 1000, 0},
                      LayoutCase{"ExactlyAsWide", 6000, 5000, 6000, 3000, false, false, 0, 1000, 0},
                      LayoutCase{"Wider", 6000, 5000, 9000, 3000, true, false, 0, 1000, 13},
                      // (6375 + 250 - 6000) / 250 = 2.5 rounds to even.
                      LayoutCase{"Larger", 6000, 5000, 6375, 8000, true, true, 0, 0, 2}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PreviewLayout, TooSmallAWindowKeepsTheOldLayout) {
  EXPECT_FALSE(drawing::placePreview(259, 5000, 100, 100));
  EXPECT_FALSE(drawing::placePreview(5000, 259, 100, 100));
}

TEST(PreviewLayout, WheelScrollsTheBarWithMoreToShow) {
  // Only a horizontal bar: the wheel scrolls sideways, toward the user to the right.
  auto s = drawing::wheelScroll(-120, 2, 10, 3, 0, 0, 3);
  ASSERT_TRUE(s);
  EXPECT_FALSE(s->vertical);
  EXPECT_EQ(s->value, 5);
  s = drawing::wheelScroll(120, 2, 10, 3, 0, 0, 3);
  EXPECT_EQ(s->value, 0);  // held at the minimum
  s = drawing::wheelScroll(-120, 0, 4, 3, 3, 4, 3);
  EXPECT_TRUE(s->vertical);  // a tie goes to the vertical bar
  EXPECT_EQ(s->value, 4);    // held at the maximum
  EXPECT_FALSE(drawing::wheelScroll(-120, 0, 0, 3, 0, 0, 3));
}

}  // namespace
