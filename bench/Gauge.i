// What SWIG is told of the class: the same as our own registration says.
%module gauge
%{
#include "bench/Gauge.h"
%}
%include <attribute.i>
%attribute(bench::Gauge, double, level, getLevel, setLevel);
%include "bench/Gauge.h"
