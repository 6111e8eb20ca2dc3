#pragma once

#include <QObject>

#include <complex>

namespace lum::qchannel {

/// One element of a complex vector sample, for views. Made for one read; whoever
/// takes it from the QVariant owns it.
class QComplexSample : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double real READ real CONSTANT)
    Q_PROPERTY(double imag READ imag CONSTANT)
    Q_PROPERTY(double abs READ abs CONSTANT)
    Q_PROPERTY(double arg READ arg CONSTANT)

public:
    explicit QComplexSample(std::complex<double> value, QObject* parent = nullptr)
        : QObject(parent), m_value(value)
    {}

    double real() const { return m_value.real(); }
    double imag() const { return m_value.imag(); }
    double abs() const { return std::abs(m_value); }
    double arg() const { return std::arg(m_value); }
    std::complex<double> value() const { return m_value; }

private:
    std::complex<double> m_value;
};

} // namespace lum::qchannel
