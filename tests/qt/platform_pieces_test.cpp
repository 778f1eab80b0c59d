// The pieces of the Qt platform layer on their own: the image list, the translation of
// Qt's keys, modifiers and buttons into the events' codes, and the property bag.
#include <QKeyEvent>
#include <QSet>
#include <QTest>

#include "qt/image_list.h"
#include "qt/input_codes.h"
#include "qt/qt_property_bag.h"

using kestrel::qt::ImageList;

class PlatformPiecesTest : public QObject {
    Q_OBJECT

private slots:
    void everyImageIsDrawnAndNoTwoLookAlike() {
        QSet<QByteArray> seen;
        for (int image = 1; image <= ImageList::kCount; ++image) {
            const QImage picture = ImageList::Render(image, 1.0);
            QVERIFY2(picture != QImage(16, 16, picture.format()), qPrintable(QString::number(image)));
            const QByteArray bytes(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes());
            QVERIFY2(!seen.contains(bytes), qPrintable(QString("image %1 repeats another").arg(image)));
            seen.insert(bytes);
        }
    }

    void keysModifiersAndButtonsBecomeTheEventsCodes() {
        const struct { int key; Qt::KeyboardModifiers modifiers; int code; } keys[] = {
            {Qt::Key_Q, {}, 81}, {Qt::Key_7, Qt::KeypadModifier, 103}, {Qt::Key_Right, {}, 39},
            {Qt::Key_F12, {}, 123}, {Qt::Key_Semicolon, {}, 186}, {Qt::Key_MediaPlay, {}, 0}};  // the last has no code
        for (const auto& k : keys) {
            QCOMPARE(int(kestrel::qt::KeyCodeOf(QKeyEvent(QEvent::KeyPress, k.key, k.modifiers))), k.code);
        }

        QCOMPARE(kestrel::qt::KeyAsciiOf(QKeyEvent(QEvent::KeyPress, Qt::Key_A, Qt::ShiftModifier, "A")), int16_t{65});
        QCOMPARE(kestrel::qt::KeyAsciiOf(QKeyEvent(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier)), int16_t{0});
        QCOMPARE(kestrel::qt::ShiftOf(Qt::ShiftModifier | Qt::AltModifier), int16_t{5});
        QCOMPARE(kestrel::qt::ShiftOf(Qt::ControlModifier | Qt::MetaModifier), int16_t{2});
        QCOMPARE(kestrel::qt::ButtonsOf(Qt::LeftButton | Qt::MiddleButton), int16_t{5});
        QCOMPARE(kestrel::qt::ButtonsOf(Qt::RightButton | Qt::BackButton), int16_t{2});
    }

    void aStoredValueOfTheWrongKindReadsAsTheDefault() {
        QVariantMap map{{"ViewStyle", "sideways"}, {"Font", 12}, {"Enabled", false}};
        kestrel::qt::QtPropertyBag bag(map);
        QCOMPARE(std::get<int32_t>(bag.ReadProperty("ViewStyle", int32_t{0})), 0);
        const kestrel::Font fallback{u"DejaVu Sans", 9};
        QCOMPARE(std::get<kestrel::Font>(bag.ReadProperty("Font", fallback)), fallback);
        QCOMPARE(std::get<bool>(bag.ReadProperty("Enabled", true)), false);
        QCOMPARE(std::get<bool>(bag.ReadProperty("AutoToolTip", true)), true);

        // A default value is not stored, and storing it again removes an old value.
        bag.WriteProperty("Enabled", true, true);
        QVERIFY(!map.contains("Enabled"));
        bag.WriteProperty("CreateBackup", true, false);
        QCOMPARE(map.value("CreateBackup"), QVariant(true));
    }
};

QTEST_MAIN(PlatformPiecesTest)
#include "platform_pieces_test.moc"
