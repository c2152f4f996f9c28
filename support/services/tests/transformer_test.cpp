// The transformer: totals and deltas of gestures, and the kinds of matrices.
#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "foundation/ur/Reference.h"
#include "foundation/urLinear/studioDecompose.h"
#include "support/services/Transformer.h"

namespace nxSupport {
namespace {

using namespace urLinear;
using Op = TransformOperation;

AffineMatrix totalOf(Transformer const& transformer, bool raw = false) {
    AffineMatrix result(7.0);
    transformer.getXForm(result, raw);
    return result;
}

AffineMatrix deltaOf(Transformer const& transformer, bool raw = false) {
    AffineMatrix result(7.0);
    transformer.getXFormDelta(result, raw);
    return result;
}

/// Random values, not near zero where an inverse would become inaccurate.
struct Draw {
    explicit Draw(unsigned seed) : engine(seed) {}

    double number(double least, double most) { return std::uniform_real_distribution<>(least, most)(engine); }
    Vector vector() { return {number(-3, 3), number(-3, 3), number(-3, 3)}; }
    Vector factors() { return {number(0.5, 2), number(0.5, 2), number(0.5, 2)}; }
    Line line() { return {Point() + vector(), Normal(vector())}; }
    AffineMatrix matrix() {
        return studioCompose(Point() + vector(), factors(), vector(), {number(-1, 1), 0, number(-1, 1)});
    }

    std::mt19937 engine;
};

struct TransformerTest : testing::Test {
    TransformerTest() {
        auto const log = [this](char const* what) {
            return [this, what](Transformer* sender) { calls += sender == &transformer ? what : "? "; };
        };
        transformer.transformStarted.addCallback(log("start "));
        transformer.transformChanged.addCallback(log("change "));
        transformer.transformFinished.addCallback(
            [this](Transformer* sender) { calls += sender->getCurrentOp() == Op::none ? "late " : "finish "; });
    }

    Transformer transformer;
    std::string calls;
};

TEST_F(TransformerTest, WithoutAGestureNothingHappensToTheObject) {
    transformer.setTranslate({1, 2, 3});
    transformer.setScale({2, 2, 2});
    EXPECT_EQ(transformer.getCurrentOp(), Op::none);
    EXPECT_TRUE(totalOf(transformer) == AffineMatrix() && deltaOf(transformer) == AffineMatrix());
}

TEST_F(TransformerTest, UnequalFactorsMakeAnythingANonUniformScale) {
    auto const expectScale = [&] {
        for (Vector const& factors : {Vector(1, 1, 3), Vector(1, 3, 3), Vector(2, 3, 2)}) {
            transformer.setScale(factors);
            EXPECT_EQ(transformer.getCurrentOp(), Op::nonUniformScale);
            EXPECT_TRUE(equivalent(totalOf(transformer), AffineMatrix().scale(factors.x, factors.y, factors.z)));
            transformer.setScale({2, 2, 2});
            EXPECT_EQ(transformer.getCurrentOp(), Op::nonUniformScale);
            transformer.finish();
        }
    };
    expectScale();  // without a gesture
    transformer.startRotate({}, {});
    expectScale();
    transformer.startXForm({});
    expectScale();
    transformer.startXForm({});
    transformer.setScale({3, 3, 3});
    EXPECT_EQ(transformer.getScaleDelta(), Vector(3, 3, 3)) << "counted from the neutral value";
}

TEST_F(TransformerTest, ListenersHearOfEachStepAndEveryGestureStartsAnew) {
    auto const expect = [&](Vector const& total, Vector const& delta) {
        EXPECT_TRUE(transformer.getTranslate() == total && transformer.getTranslateDelta() == delta) << calls;
    };
    transformer.startTranslate({});
    for (double const x : {1, 3}) transformer.setTranslate({x, 0, 0});
    expect({3, 0, 0}, {2, 0, 0});
    transformer.startTranslate({});  // without finishing the previous one
    expect({}, {});
    transformer.setTranslate({5, 0, 0});
    expect({5, 0, 0}, {5, 0, 0});
    transformer.finish();
    EXPECT_EQ(transformer.getCurrentOp(), Op::none);
    EXPECT_EQ(calls, "start change change start change finish ");
}

TEST_F(TransformerTest, ListenersMaySetOtherValuesAndDropTheLastReference) {
    auto held = ur::make<Transformer>();
    held->transformChanged.addCallback([](Transformer* sender) {
        Vector const snapped(std::round(sender->getTranslate().x), 0, 0);
        if (sender->getTranslate() != snapped) sender->setTranslate(snapped);
    });
    held->transformFinished.addCallback([&](Transformer*) { held.reset(); });
    held->startTranslate({});
    held->setTranslate({1.8, 0, 0});
    EXPECT_EQ(held->getTranslate(), Vector(2, 0, 0));
    held->finish();
    EXPECT_TRUE(held.null());
}

TEST_F(TransformerTest, ScalesKeepTheirCentreAndStayNonUniform) {
    AffineMatrix const start = Draw(1).matrix();
    Point const center(1, 2, 3);
    transformer.startScale(start, center);
    EXPECT_EQ(transformer.getCurrentOp(), Op::uniformScale);
    transformer.setScale({2, 2, 2});
    EXPECT_EQ(transformer.getCurrentOp(), Op::uniformScale);
    EXPECT_TRUE(equivalent(center * totalOf(transformer), center));
    EXPECT_TRUE(equivalent((center + Vector(1, 0, 0)) * totalOf(transformer), center + Vector(2, 0, 0)));
    EXPECT_TRUE(equivalent(totalOf(transformer, true), totalOf(transformer, false))) << "raw means nothing here";
    transformer.setScale({2, 2, 3});
    EXPECT_EQ(transformer.getCurrentOp(), 8);
    transformer.setScale({2, 2, 2});
    EXPECT_EQ(transformer.getCurrentOp(), Op::nonUniformScale);
    EXPECT_EQ(transformer.getScaleDelta(), Vector(1, 1, 2.0 / 3));
    // Along the axes of the start matrix, wherever the object is.
    transformer.setScale({1, 1, 3});
    Vector const along = start.axis(2);
    EXPECT_TRUE(equivalent((center + along) * totalOf(transformer), center + 3 * along));
}

TEST_F(TransformerTest, FlatteningStaysFinite) {
    AffineMatrix const flat = AffineMatrix().scale(1, 1, 0);
    transformer.startScale(flat, {1, 1, 1});
    for (Vector const& factors : {Vector(0, 1, 1), Vector(0, 2, 0), Vector(3, 1, 1e-320), Vector(1e300, 1, 1)}) {
        transformer.setScale(factors);
        for (auto const& matrix : {totalOf(transformer), deltaOf(transformer)})
            for (int i = 0; i < 12; ++i) EXPECT_TRUE(std::isfinite(matrix.coefficient(i))) << i;
    }
    transformer.setScale({0, 1, 1});
    transformer.setScale({2, 0, 3});
    EXPECT_EQ(transformer.getScaleDelta(), Vector(1, 0, 3)) << "nothing leads back from zero";
    transformer.startXForm(flat);
    for (auto const& matrix : {flat, AffineMatrix(2.0)}) transformer.setXForm(matrix);
    EXPECT_EQ(deltaOf(transformer, true), AffineMatrix(2.0)) << "the identity stands for what has no inverse";
    EXPECT_EQ(totalOf(transformer), AffineMatrix(2.0) * flat);
}

/// Random gestures of every kind. The product of the deltas must be the total.
TEST_F(TransformerTest, DeltasMakeTheTotal) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        Draw draw(seed);
        AffineMatrix const start = draw.matrix();
        Line const axis = draw.line();
        switch (seed % 4) {
            case 0: transformer.startTranslate(start); break;
            case 1: transformer.startRotate(start, axis); break;
            case 2: transformer.startScale(start, Point() + draw.vector()); break;
            default: transformer.startXForm(start);
        }
        for (auto const& matrix : {totalOf(transformer), deltaOf(transformer)})
            EXPECT_TRUE(equivalent(matrix, AffineMatrix(), 1e-9)) << "something is left of the gesture before";
        AffineMatrix sum, rawSum;
        Line line, deltaLine;
        double angle = 0, delta = 0, angles = 0;
        for (int move = 0; move < 5; ++move) {
            transformer.setTranslate(draw.vector());
            transformer.setRotate(draw.number(-4, 4));
            transformer.setXForm(draw.matrix());
            if (seed % 4 == 2) transformer.setScale(draw.factors());
            sum.preMult(deltaOf(transformer));
            rawSum.preMult(deltaOf(transformer, true));
            EXPECT_TRUE(equivalent(sum, totalOf(transformer), 1e-6));
            EXPECT_TRUE(equivalent(rawSum, totalOf(transformer, true), 1e-6));
            if (seed % 4 == 1) {
                transformer.getRotate(line, angle);
                transformer.getRotateDelta(deltaLine, delta);
                EXPECT_TRUE(line == axis && deltaLine == axis && transformer.getRotateAxis() == axis);
                EXPECT_NEAR(angles += delta, angle, 1e-9);
            }
            if (seed % 4 != 3) continue;
            // The raw transform before the start matrix must equal the other one after it.
            EXPECT_TRUE(equivalent(start * totalOf(transformer), totalOf(transformer, true) * start, 1e-6));
            EXPECT_TRUE(equivalent(start * deltaOf(transformer), deltaOf(transformer, true) * start, 1e-6));
        }
    }
}

TEST(TransformDescriptor, TellsWhatAMatrixDoes) {
    double const below = epsilonTol * 0.9, above = epsilonTol * 1.1;
    std::pair<AffineMatrix, int> const cases[] = {
        {AffineMatrix(), 0},
        {AffineMatrix().translate({1, 0, 0}), 1},
        {AffineMatrix().rotate(Line(), 1), 2},
        {AffineMatrix().scale(2), 4},
        {AffineMatrix().scale(1, 2, 1), 8},
        {AffineMatrix().scale(2).translate({1, 2, 3}), 5},
        {AffineMatrix().scale(1, 1, 2).rotate(Line(), 1).translate({0, 0, 1}), 11},
        {AffineMatrix().scale(-1), 4},
        {AffineMatrix().scale(1, 1, -1), 8},
        {AffineMatrix().scale(0), 4},
        {AffineMatrix().setAxis(1, {5, 1, 0}), 0},  // sheared
        {AffineMatrix().translate({below, 0, 0}), 0},
        {AffineMatrix().translate({0, above, 0}), 1},
        {AffineMatrix().scale(1 + below), 0},
        {AffineMatrix().scale(1 + above), 4},
        {AffineMatrix().scale(1, 1 + above, 1), 8},
        {AffineMatrix().rotate(Line(), below), 0},
        {AffineMatrix().rotate(Line(), above), 2},
    };
    for (auto const& [matrix, flags] : cases) {
        int found = -1;
        transformDescriptor(matrix, found);
        EXPECT_EQ(found, flags) << matrix.coefficient(0);
    }
}

}  // namespace
}  // namespace nxSupport
