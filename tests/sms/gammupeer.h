#pragma once
// The independent SMS implementation the codec is checked against: Debian's
// python3-gammu behind gammu_peer.py, one JSON request in, one answer out.
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

// Runs the peer; *skipped is true when python3-gammu is missing (exit
// status 3). A peer that fails otherwise gives an empty answer, which fails
// the caller's comparisons.
inline QJsonObject runGammuPeer(const QJsonObject& request, bool* skipped)
{
    QProcess peer;
    peer.start(QStringLiteral("/usr/bin/python3"), { QStringLiteral(GAMMU_PEER_SCRIPT) });
    *skipped = !peer.waitForStarted(10000);
    if (*skipped)
        return QJsonObject();
    peer.write(QJsonDocument(request).toJson(QJsonDocument::Compact));
    peer.closeWriteChannel();
    if (!peer.waitForFinished(60000)) {
        peer.kill();
        peer.waitForFinished();
    }
    *skipped = peer.exitStatus() == QProcess::NormalExit && peer.exitCode() == 3;
    if (peer.exitStatus() != QProcess::NormalExit || peer.exitCode() != 0)
        qWarning("gammu peer failed: %s", peer.readAllStandardError().constData());
    return QJsonDocument::fromJson(peer.readAllStandardOutput()).object();
}
