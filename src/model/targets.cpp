#include "model/targets.h"

#include "core/paths.h"

namespace Targets {

QList<Target> of(const Finding& finding, const SpaceNode* tree) {
    QList<Target> out;
    if (!finding.parts.isEmpty()) {
        for (const Part& p : finding.parts) out.append({finding, p});
        return out;
    }
    for (const QString& path : finding.paths) {
        Target t{finding, plain(path, finding.paths.size() == 1 ? finding.bytes : 0).part};
        if (const SpaceNode* node = tree ? tree->find(path) : nullptr) t.part.bytes = node->bytes;
        out.append(t);
    }
    return out;
}

Target plain(const QString& path, qint64 bytes) { return {Finding{}, Part{Paths::lastComponent(path), path, bytes, {}, {}}}; }

}  // namespace Targets
