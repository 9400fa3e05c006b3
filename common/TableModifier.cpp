#include "common/TableModifier.h"

#include <ostream>
#include <stdexcept>

namespace vrm {
namespace common {

using Generator_3_bll::tableModifier_s;

TableModifier::TableModifier() { m_record.useStream = true; }

TableModifier::TableModifier(const tableModifier_s& record)
    : m_record(record), m_holdCount(record.stutterCount + 1), m_holdRemaining(record.stutterCount) {
    if (m_record.data.empty())
        throw std::invalid_argument("TableModifier::TableModifier : data array is empty\n");
    m_current = 0;
    m_valueSize = m_record.data.front().data.size();
}

TableModifier::~TableModifier() = default;

void TableModifier::SetModIndex(unsigned int index) { m_record.modIndex = index; }
unsigned int TableModifier::GetModIndex() const { return m_record.modIndex; }
bool TableModifier::isRange() const { return false; }

bool TableModifier::Validate(std::ostringstream* errors) {
    const std::string& name = m_record.offsetReference;
    if (m_record.data.empty()) {
        if (errors != nullptr) *errors << "Modifier " << name << " list is empty." << std::endl;
        return false;
    }
    const std::size_t size = m_record.data.front().data.size();
    if (size > 16) {
        if (errors != nullptr) {
            *errors << "Modifier " << name << " data size " << size << " is greater than " << 16 << "."
                    << std::endl;
        }
        return false;
    }
    for (const auto& value : m_record.data) {
        if (value.data.size() != size) {
            if (errors != nullptr)
                *errors << "Modifier " << name << " data size is not consistent." << std::endl;
            return false;
        }
    }
    if (m_record.useStream || m_totalCount == 0) return true;
    const auto listSize = static_cast<unsigned int>(m_record.data.size());
    // 32-bit arithmetic; a product that wraps to 0 cannot divide and is reported as not
    // dividing the total count.
    const unsigned int cycle = (m_record.stutterCount + 1) * listSize;
    if (cycle != 0 && m_totalCount % cycle == 0) return true;
    if (errors != nullptr) {
        *errors << "Streamblocks with stream generation disabled need device modifiers to have total device "
                   "count "
                   "as multiple of (list size * (repeat count + 1)). Modifier "
                << name << ", Total count " << m_totalCount << ", List size " << listSize << ", Repeat count "
                << m_record.stutterCount << "." << std::endl;
    }
    return false;
}

bool TableModifier::Update(std::ostringstream* errors) {
    if (!Validate(errors)) return false;
    m_holdCount = (m_childStutterCount + 1) * (m_record.stutterCount + 1);
    m_valueSize = m_record.data.front().data.size();
    Reset();
    return true;
}

void TableModifier::ToRpc(Generator_3_bll::streamBlock_s& block) { block.tableModifiers.push_back(m_record); }

bool TableModifier::IsStreamModifier() const { return m_record.useStream; }
void TableModifier::SetEnableStream(bool enable) { m_record.useStream = enable; }
void TableModifier::SetStutterCount(unsigned int count) { m_record.stutterCount = count; }
unsigned int TableModifier::GetStutterCount() const { return m_record.stutterCount; }
void TableModifier::SetTotalCount(unsigned int count) { m_totalCount = count; }
unsigned int TableModifier::GetTotalCount() const { return m_totalCount; }

unsigned int TableModifier::GetEffectiveRecycleCount() const {
    if (m_totalCount == 0) return static_cast<unsigned int>(m_record.data.size()) * m_holdCount;
    return (m_childStutterCount + 1) * m_totalCount;
}

unsigned int TableModifier::GetRecycleCount() const {
    return static_cast<unsigned int>(m_record.data.size());
}
unsigned int TableModifier::GetChildStutterCount() const { return m_childStutterCount; }
unsigned int TableModifier::GetRelativeOffset() const { return m_record.offset; }
std::string TableModifier::GetOffsetReference() const { return m_record.offsetReference; }
void TableModifier::SetOffsetReference(const std::string& reference) { m_record.offsetReference = reference; }

unsigned char TableModifier::GetDataSizeInBytes() const {
    return m_record.data.empty() ? static_cast<unsigned char>(0)
                                 : static_cast<unsigned char>(m_record.data.front().data.size());
}

void TableModifier::RequireList(const char* operation) const {
    if (m_record.data.empty()) {
        throw std::logic_error(std::string("TableModifier::") + operation + " : modifier " +
                               m_record.offsetReference + " has an empty list\n");
    }
}

void TableModifier::Reset() {
    RequireList("Reset");
    m_holdRemaining = m_holdCount - 1;
    m_current = 0;
    const auto listSize = static_cast<unsigned int>(m_record.data.size());
    m_totalRemaining = (m_childStutterCount + 1) * (m_totalCount != 0 ? m_totalCount : listSize);
}

void TableModifier::Next() {
    RequireList("Next");
    if (m_holdRemaining == 0) {
        if (++m_current == m_record.data.size()) m_current = 0;
        m_holdRemaining = m_holdCount - 1;
    } else {
        --m_holdRemaining;
    }
    if (m_totalCount == 0) return;
    if (--m_totalRemaining == 0) {
        m_current = 0;
        m_holdRemaining = m_holdCount - 1;
        m_totalRemaining = m_totalCount * (m_childStutterCount + 1);
    }
}

void TableModifier::UpdateChildStutterCount(unsigned int count) {
    m_childStutterCount = count;
    m_holdCount = (count + 1) * (m_record.stutterCount + 1);
}

void TableModifier::GetValue(std::vector<unsigned char>& value) {
    RequireList("GetValue");
    value = m_record.data[m_current].data;
}

void TableModifier::GetValueAt(std::vector<unsigned char>& value, unsigned int index) {
    RequireList("GetValueAt");
    const unsigned int period = GetEffectiveRecycleCount();
    if (period == 0 || m_holdCount == 0) {
        std::ostringstream text;
        text << "TableModifier::GetValueAt : modifier " << m_record.offsetReference
             << " has a zero period (effective recycle count " << period << ", frames per value "
             << m_holdCount << ")\n";
        throw std::logic_error(text.str());
    }
    const unsigned int position = (index % period) / m_holdCount;
    value = m_record.data.at(position).data;
}

void TableModifier::GetAdjustedModifier(tableModifier_s& out) {
    out.modIndex = m_record.modIndex;
    out.offset = m_record.offset;
    out.offsetReference = m_record.offsetReference;
    out.stutterCount = m_record.stutterCount;
    out.useStream = m_record.useStream;
    out.data.resize(m_record.data.size());
    FieldPacker& packer = *GetFieldPacker();
    for (std::size_t i = 0; i < m_record.data.size(); ++i) {
        packer.GetBytes(out.data[i].data, m_record.data[i].data, false);
    }
}

}  // namespace common
}  // namespace vrm
