#include "shapes.h"

int Shape::count_ = 0;
static const double kPi = 3.14159265358979;

Point::Point(int x, int y) : x(x), y(y)
{
}

bool Point::operator==(const Point& other) const
{
    return x == other.x && y == other.y;
}

Point Point::operator + (const Point& other) const
{
    return Point(x + other.x, y + other.y);
}

Shape::Shape(const std::string& name)
    : origin_(0, 0), name_(name)
{
    ++count_;
}

Shape::~Shape()
{
    --count_;
}

void Shape::Move(int dx,
                 int dy)
{
    origin_ = origin_ + Point(dx, dy);   // move by the offset
}

const std::string& Shape::Name() const { return name_; }

int Shape::Count()
{
    return count_;
}

Circle::Circle(const Point& centre, double radius)
    : Shape("circle"), radius_(radius)
{
    origin_ = centre;
}

double Circle::Area() const
{
    return kPi * radius_ * radius_;
}

/* The plain C interface used by the plug-in loader. */
extern "C" {
int shapes_count(void)
{
    return Shape::Count();
}
}
