#include "engine/session.h"

namespace engine {

EngineSession::EngineSession(db::Connection& connection, Reporter& reporter)
    : m_connection(connection), m_reporter(reporter) {}

bool EngineSession::LoadDesignProfile() {
  return engine::LoadDesignProfile(m_connection, m_reporter, m_profile);
}

void EngineSession::setSection(std::int32_t sectionId) {
  m_sectionId = sectionId;
  m_quantityChainagesOutOfDate = true;
  // The cached details row and design-level interval belong to the previous section.
  m_design.DetailsReload = true;
  m_levels.Reload = true;
}

void EngineSession::levelDataChanged() {
  m_quantityChainagesOutOfDate = true;
  m_design.DetailsReload = true;
  m_levels.Reload = true;
}

}  // namespace engine
