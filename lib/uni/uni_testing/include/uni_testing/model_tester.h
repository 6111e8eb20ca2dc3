#pragma once

class QAbstractItemModel;
class QAbstractItemModelTester;

namespace uni_testing {

/// Attaches a QAbstractItemModelTester to @p model for the model's lifetime (the
/// tester is its child). The tester reports through Qt warnings of category
/// "qt.modeltest", which the Qt test main turns into test failures, also inside a
/// QtMessageCapture.
QAbstractItemModelTester* attachModelTester(QAbstractItemModel* model);

} // namespace uni_testing
