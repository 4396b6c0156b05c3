#pragma once
// Actions that move the current page, which counts for the actions behind them in the same list. Their
// members are public fields; `Dummy` and `PageIndex` are stored and never used.
#include "actions/Action.h"

class TPDFActionGotoPage : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionGotoPage() = default;
    FIELD(Integer, PageNumber) = 1;
    FIELD(Integer, PageIndex) = 0;
};

class TPDFActionGotoNextPage : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionGotoNextPage() = default;
    FIELD(Integer, Dummy) = 0;
    bool Config() override { return true; }
};

class TPDFActionGotoPreviousPage : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionGotoPreviousPage() = default;
    FIELD(Integer, Dummy) = 0;
    bool Config() override { return true; }
};

class TPDFActionGotoFirstPage : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionGotoFirstPage() = default;
    FIELD(Integer, Dummy) = 0;
    bool Config() override { return true; }
};

class TPDFActionGotoLastPage : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionGotoLastPage() = default;
    FIELD(Integer, Dummy) = 0;
    bool Config() override { return true; }
};
