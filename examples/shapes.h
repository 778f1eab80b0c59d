// Shapes of a small drawing program.
#ifndef SHAPES_H
#define SHAPES_H

#include <string>

class Point
{
public:
    Point(int x, int y);
    bool operator==(const Point& other) const;
    Point operator + (const Point& other) const;

    int x;
    int y;
};

/* Every shape has a name and an origin; the area is up to the kind of shape. */
class Shape
{
public:
    explicit Shape(const std::string& name);
    virtual ~Shape();

    virtual double Area() const = 0;
    virtual void Move(int dx,
                      int dy);
    const std::string& Name() const;
    static int Count();

protected:
    Point origin_;

private:
    std::string name_;
    static int count_;
};

class Circle : public Shape
{
public:
    Circle(const Point& centre, double radius);
    double Area() const;

private:
    double radius_;
};

#endif
