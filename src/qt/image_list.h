#pragma once
// The class view's pictures: fifteen 16 x 16 images, numbered from 1 as the control
// hands them out (1 class, 3-5 variables and 6-8 functions by public, protected,
// private scope, 10/11 the project closed and open, 12-15 the four file kinds).
// Slots 2 and 9 are never handed out by the control; they hold the pictures of the
// "Variables" and "Functions" folders, which the control marks with the images of
// a public variable and a public function.
#include <QIcon>
#include <QImage>

namespace kestrel::qt {

class ImageList {
public:
    static constexpr int kCount = 15;
    static constexpr int kSize = 16;
    static constexpr int kVariablesFolder = 2;
    static constexpr int kFunctionsFolder = 9;

    // The shared list; built on first use (needs a QGuiApplication).
    static const ImageList& Instance();

    // Image 1..15 as an icon with sharp 1x, 2x and 3x renderings; a null icon otherwise.
    const QIcon& Icon(int image) const;
    // One image drawn at the given device pixel ratio.
    static QImage Render(int image, qreal devicePixelRatio);

private:
    ImageList();
    QIcon icons_[kCount];
    QIcon none_;
};

}  // namespace kestrel::qt
