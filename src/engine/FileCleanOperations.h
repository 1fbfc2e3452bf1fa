#pragma once

#include "engine/CBaseOperation2.h"

namespace brimvault::engine {

/// Each cleans one section of files: the items given, in the section's folder.

class CDwnOperation final : public CBaseOperation2 {
public:
    explicit CDwnOperation(const ItemArray& items) : CBaseOperation2(Section::downloads, items) {}

protected:
    void main() override;
};

class CChOperation final : public CBaseOperation2 {
public:
    explicit CChOperation(const ItemArray& items) : CBaseOperation2(Section::caches, items) {}

protected:
    void main() override;
};

class CTrOperation final : public CBaseOperation2 {
public:
    explicit CTrOperation(const ItemArray& items) : CBaseOperation2(Section::trash, items) {}

protected:
    void main() override;
};

/// Its items carry their paths, since logs lie in several folders.
class CLogsOperation final : public CBaseOperation2 {
public:
    explicit CLogsOperation(const ItemArray& items) : CBaseOperation2(Section::logs, items) {}

protected:
    void main() override;
};

}  // namespace brimvault::engine
