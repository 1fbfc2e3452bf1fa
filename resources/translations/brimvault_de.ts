<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Clean</name>
    <message>
        <source>It holds something that is not selected</source>
        <translation>Enthält etwas, das nicht ausgewählt ist</translation>
    </message>
    <message>
        <source>Can&apos;t remove file</source>
        <translation>Die Datei kann nicht entfernt werden</translation>
    </message>
    <message>
        <source>Its folder is not the one that was scanned any more</source>
        <translation>Sein Ordner ist nicht mehr der, der gescannt wurde</translation>
    </message>
    <message>
        <source>It lies outside of the trial</source>
        <translation>Liegt außerhalb des Probelaufs</translation>
    </message>
    <message>
        <source>It is not the file or folder that was scanned any more</source>
        <translation>Es ist nicht mehr die Datei oder der Ordner vom Scan</translation>
    </message>
    <message>
        <source>A program writes to it, and it has another name as well</source>
        <translation>Ein Programm schreibt hinein, und es gibt noch einen anderen Namen dafür</translation>
    </message>
</context>
<context>
    <name>CleanQuestion</name>
    <message>
        <source>Are you sure you want to  completely delete the selected items?</source>
        <translation>Möchten Sie die ausgewählten Objekte wirklich vollständig löschen?</translation>
    </message>
    <message>
        <source>Files will be  permanently removed from your Hard Drive.</source>
        <translation>Die Dateien werden endgültig von Ihrer Festplatte entfernt.</translation>
    </message>
    <message>
        <source>1 item, %1</source>
        <translation>1 Objekt, %1</translation>
    </message>
    <message>
        <source>%1 items, %2</source>
        <translation>%1 Objekte, %2</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <comment>section and size</comment>
        <translation>%1 %2</translation>
    </message>
    <message>
        <source>1 selected item carries a warning:</source>
        <translation>1 ausgewähltes Objekt hat einen Warnhinweis:</translation>
    </message>
    <message>
        <source>%1 selected items carry a warning:</source>
        <translation>%1 ausgewählte Objekte haben einen Warnhinweis:</translation>
    </message>
    <message>
        <source>%1 (frees %2)</source>
        <comment>items and their size</comment>
        <translation>%1 (gibt %2 frei)</translation>
    </message>
</context>
<context>
    <name>FileActions</name>
    <message>
        <source>Can&apos;t show file</source>
        <translation>Die Datei kann nicht angezeigt werden</translation>
    </message>
    <message>
        <source>No file manager answers. The file is in the folder %1</source>
        <translation>Kein Dateimanager antwortet. Die Datei liegt im Ordner %1</translation>
    </message>
    <message>
        <source>Can&apos;t find file</source>
        <translation>Die Datei wurde nicht gefunden</translation>
    </message>
    <message>
        <source>The file’s %1%2%1 does not exist or its existence could not be determined</source>
        <translation>Die Datei %1%2%1 ist nicht vorhanden, oder es ließ sich nicht feststellen, ob sie vorhanden ist</translation>
    </message>
</context>
<context>
    <name>FreedText</name>
    <message>
        <source>Freed %1</source>
        <translation>%1 freigegeben</translation>
    </message>
    <message>
        <source>Freed %1 (%2 selected; %3 is still in use or shared)</source>
        <translation>%1 freigegeben (%2 ausgewählt; %3 noch benutzt oder geteilt)</translation>
    </message>
    <message>
        <source>Freed %1 (%2 selected; %3 is still in use by %4 or shared)</source>
        <translation>%1 freigegeben (%2 ausgewählt; %3 noch von %4 benutzt oder geteilt)</translation>
    </message>
    <message>
        <source>1 log emptied</source>
        <translation>1 Protokoll geleert</translation>
    </message>
    <message>
        <source>%1 logs emptied</source>
        <translation>%1 Protokolle geleert</translation>
    </message>
    <message>
        <source>%1; %2</source>
        <comment>what was freed, and what was emptied</comment>
        <translation>%1; %2</translation>
    </message>
</context>
<context>
    <name>ItemNote</name>
    <message>
        <source>May hold work that exists nowhere else</source>
        <translation>Enthält womöglich Arbeit, die es nirgends sonst gibt</translation>
    </message>
    <message>
        <source>Holds content kept for use without a connection</source>
        <translation>Enthält Inhalte für die Nutzung ohne Verbindung</translation>
    </message>
    <message>
        <source>You may have to sign in again</source>
        <translation>Eine neue Anmeldung kann nötig werden</translation>
    </message>
    <message>
        <source>Takes long to make again</source>
        <translation>Es dauert lange, das neu zu erzeugen</translation>
    </message>
    <message>
        <source>Will be downloaded again: %1</source>
        <translation>Wird erneut heruntergeladen: %1</translation>
    </message>
    <message>
        <source>%1 is running and uses it</source>
        <translation>%1 läuft und benutzt es</translation>
    </message>
    <message>
        <source>The desktop session uses it; best removed just before logging out</source>
        <translation>Die Sitzung benutzt es; am besten kurz vor dem Abmelden entfernen</translation>
    </message>
    <message>
        <source>Holds working copies of source code</source>
        <translation>Enthält Arbeitskopien von Quelltext</translation>
    </message>
    <message>
        <source>A record of log-ins or of installed software</source>
        <translation>Aufzeichnung von Anmeldungen oder installierter Software</translation>
    </message>
    <message>
        <source>Shares its space with other folders; removing it frees about %1</source>
        <translation>Teilt sich den Platz mit anderen Ordnern; Entfernen gibt etwa %1 frei</translation>
    </message>
    <message>
        <source>Is emptied, because %1 still writes to it</source>
        <translation>Wird geleert, weil %1 noch hineinschreibt</translation>
    </message>
    <message>
        <source>A program is running and uses it</source>
        <translation>Ein Programm läuft und benutzt es</translation>
    </message>
    <message>
        <source>Unfinished, last written on %1</source>
        <translation>Unfertig, zuletzt geschrieben am %1</translation>
    </message>
    <message>
        <source>Being deleted</source>
        <translation>Wird gerade gelöscht</translation>
    </message>
    <message>
        <source>Unfinished; a program is writing to it</source>
        <translation>Unfertig; ein Programm schreibt gerade hinein</translation>
    </message>
    <message>
        <source>Unfinished; %1 is writing to it</source>
        <translation>Unfertig; %1 schreibt gerade hinein</translation>
    </message>
    <message>
        <source>May still be wanted to report a crash</source>
        <translation>Wird vielleicht noch gebraucht, um einen Absturz zu melden</translation>
    </message>
    <message>
        <source>Is emptied, because a program still writes to it</source>
        <translation>Wird geleert, weil ein Programm noch hineinschreibt</translation>
    </message>
    <message>
        <source>Only the system removes it: %1</source>
        <translation>Nur das System entfernt es: %1</translation>
    </message>
</context>
<context>
    <name>Languages</name>
    <message>
        <source>Kept</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Flag</source>
        <translation>Flagge</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
</context>
<context>
    <name>NotCleaned</name>
    <message>
        <source>%1 - %2 language resources were not removed</source>
        <translation>%1 - %2 Sprachressourcen wurden nicht entfernt</translation>
    </message>
    <message>
        <source>%1 - 1 language resource was not removed</source>
        <translation>%1 - 1 Sprachressource wurde nicht entfernt</translation>
    </message>
</context>
<context>
    <name>NoteWarnings</name>
    <message>
        <source>and 1 more</source>
        <translation>und 1 weiteres</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message>
        <source>%1 – %2</source>
        <comment>name and warning</comment>
        <translation>%1 – %2</translation>
    </message>
</context>
<context>
    <name>Places</name>
    <message>
        <source>the link leads to nothing; is a disk missing?</source>
        <translation>die Verknüpfung führt ins Leere; fehlt ein Laufwerk?</translation>
    </message>
    <message>
        <source>it is no folder</source>
        <translation>es ist kein Ordner</translation>
    </message>
    <message>
        <source>it is your home folder</source>
        <translation>es ist Ihr persönlicher Ordner</translation>
    </message>
    <message>
        <source>it holds your home folder</source>
        <translation>darin liegt Ihr persönlicher Ordner</translation>
    </message>
    <message>
        <source>it is a folder for your own files</source>
        <translation>es ist ein Ordner für Ihre eigenen Dateien</translation>
    </message>
    <message>
        <source>it holds a folder for your own files, %1</source>
        <translation>darin liegt ein Ordner für Ihre eigenen Dateien: %1</translation>
    </message>
    <message>
        <source>another section looks there</source>
        <translation>dort sucht ein anderer Bereich</translation>
    </message>
    <message>
        <source>it holds a folder where a section looks, %1</source>
        <translation>darin liegt ein Ordner, in dem ein Bereich sucht: %1</translation>
    </message>
    <message>
        <source>it cannot be read</source>
        <translation>er kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>%1, which leads to %2</source>
        <translation>%1, führt zu %2</translation>
    </message>
    <message>
        <source>Not looked into: %1 (%2)</source>
        <translation>Wird nicht durchsucht: %1 (%2)</translation>
    </message>
    <message>
        <source>Looks in:</source>
        <translation>Sucht in:</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
</context>
<context>
    <name>Section</name>
    <message>
        <source>Downloads</source>
        <translation>Downloads</translation>
    </message>
    <message>
        <source>Caches</source>
        <translation>Caches</translation>
    </message>
    <message>
        <source>Trash</source>
        <translation>Papierkorb</translation>
    </message>
    <message>
        <source>Logs</source>
        <translation>Protokolle</translation>
    </message>
    <message>
        <source>Language Resources</source>
        <translation>Sprachressourcen</translation>
    </message>
</context>
<context>
    <name>SectionNotes</name>
    <message>
        <source>Does not answer, skipped</source>
        <translation>Antwortet nicht, übersprungen</translation>
    </message>
    <message>
        <source>Stopped, %1 cleaned</source>
        <translation>Gestoppt, %1 entfernt</translation>
    </message>
    <message>
        <source>%1 cleaned</source>
        <translation>%1 entfernt</translation>
    </message>
    <message>
        <source>Stopped, nothing found so far</source>
        <translation>Gestoppt, bisher nichts gefunden</translation>
    </message>
    <message>
        <source>Stopped, 1 application so far</source>
        <translation>Gestoppt, bisher 1 Programm</translation>
    </message>
    <message>
        <source>Stopped, %1 applications so far</source>
        <translation>Gestoppt, bisher %1 Programme</translation>
    </message>
    <message>
        <source>Stopped, 1 item so far</source>
        <translation>Gestoppt, bisher 1 Objekt</translation>
    </message>
    <message>
        <source>Stopped, %1 items so far</source>
        <translation>Gestoppt, bisher %1 Objekte</translation>
    </message>
</context>
<context>
    <name>SingleRemoval</name>
    <message>
        <source>Files will be  permanently removed from your Hard Drive.</source>
        <translation>Die Dateien werden endgültig von Ihrer Festplatte entfernt.</translation>
    </message>
    <message>
        <source>It holds 1 other item of the list, which goes with it.</source>
        <translation>Enthält 1 weiteres Objekt der Liste, das ebenfalls entfernt wird.</translation>
    </message>
    <message>
        <source>It holds %1 other items of the list, which go with it.</source>
        <translation>Enthält %1 weitere Objekte der Liste, die ebenfalls entfernt werden.</translation>
    </message>
    <message>
        <source>Are you sure you want to completely delete “%1”?</source>
        <translation>Möchten Sie „%1“ wirklich vollständig löschen?</translation>
    </message>
    <message>
        <source>“%1” could not be removed</source>
        <translation>„%1“ konnte nicht entfernt werden</translation>
    </message>
    <message>
        <source>It stands for 1 file or folder:</source>
        <translation>Steht für 1 Datei oder Ordner:</translation>
    </message>
    <message>
        <source>It stands for %1 files or folders:</source>
        <translation>Steht für %1 Dateien oder Ordner:</translation>
    </message>
    <message>
        <source>About what goes with it:</source>
        <translation>Zu dem, was ebenfalls entfernt wird:</translation>
    </message>
</context>
<context>
    <name>Sorting</name>
    <message>
        <source>Sorted ascending</source>
        <translation>Aufsteigend sortiert</translation>
    </message>
    <message>
        <source>Sorted descending</source>
        <translation>Absteigend sortiert</translation>
    </message>
</context>
<context>
    <name>StatusTexts</name>
    <message>
        <source>Zero Bytes</source>
        <translation>0 Byte</translation>
    </message>
    <message>
        <source>Selected of %1</source>
        <translation>von %1 ausgewählt</translation>
    </message>
    <message>
        <source>Cleaning...</source>
        <translation>Wird bereinigt …</translation>
    </message>
    <message>
        <source>Removing...</source>
        <translation>Wird entfernt …</translation>
    </message>
    <message>
        <source>Select sections and press Scan button</source>
        <translation>Bereiche auswählen und auf „Scannen“ klicken</translation>
    </message>
    <message>
        <source>Select files and press Clean button</source>
        <translation>Dateien auswählen und auf „Bereinigen“ klicken</translation>
    </message>
    <message>
        <source>Select files to clean</source>
        <translation>Zu Bereinigendes auswählen</translation>
    </message>
    <message>
        <source>%1 cleaned before</source>
        <translation>Bisher %1 entfernt</translation>
    </message>
    <message>
        <source>%1 cleaned</source>
        <translation>%1 entfernt</translation>
    </message>
    <message>
        <source>%1 cleaned in total</source>
        <translation>Insgesamt %1 entfernt</translation>
    </message>
    <message>
        <source>Removing, then closing...</source>
        <translation>Schließt nach dem Entfernen …</translation>
    </message>
    <message>
        <source>Cleaning frees %1. Snapshots of the file system may still hold that space.</source>
        <translation>Das Aufräumen gibt %1 frei. Schnappschüsse des Dateisystems können diesen Platz weiter belegen.</translation>
    </message>
</context>
<context>
    <name>Subtitle</name>
    <message>
        <source>Not Scanned</source>
        <translation>Nicht gescannt</translation>
    </message>
    <message>
        <source>%1 applications found</source>
        <translation>%1 Programme gefunden</translation>
    </message>
    <message>
        <source>%1%2. %3 found</source>
        <translation>%1&#xa0;%2. %3 gefunden</translation>
    </message>
    <message>
        <source>%1 of %2 Selected</source>
        <translation>%1 von %2 gewählt</translation>
    </message>
    <message>
        <source>No extra resources found</source>
        <translation>Nichts Überflüssiges gefunden</translation>
    </message>
    <message>
        <source>No files found</source>
        <translation>Keine Dateien gefunden</translation>
    </message>
</context>
<context>
    <name>Trash</name>
    <message>
        <source>Something else has its name by now, so that it stays in the Trash</source>
        <translation>Etwas anderes hat inzwischen seinen Namen, deshalb bleibt es im Papierkorb</translation>
    </message>
    <message>
        <source>It is not in the Trash any more</source>
        <translation>Es ist nicht mehr im Papierkorb</translation>
    </message>
    <message>
        <source>There is no trash folder for it: %1</source>
        <translation>Es gibt keinen Papierkorb dafür: %1</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Origin unknown</source>
        <translation>Herkunft unbekannt</translation>
    </message>
    <message>
        <source>From %1</source>
        <translation>Ursprünglicher Ort: %1</translation>
    </message>
    <message>
        <source>Deleted on %1</source>
        <translation>Gelöscht: %1</translation>
    </message>
    <message>
        <source>The folder that held it is not there any more</source>
        <translation>Der Ordner, in dem es lag, ist nicht mehr da</translation>
    </message>
</context>
<context>
    <name>WindowControls</name>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Stop Scanning</source>
        <translation>Scan stoppen</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Scannen</translation>
    </message>
    <message>
        <source>Clean</source>
        <translation>Bereinigen</translation>
    </message>
    <message>
        <source>Stop Cleaning</source>
        <translation>Bereinigung stoppen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::AboutWC</name>
    <message>
        <source>About Brimvault</source>
        <translation>Über Brimvault</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>Frees disk space: it shows what your caches, unneeded languages, logs, downloads and trash hold, and removes what you tick.</source>
        <translation>Gibt Speicherplatz frei: zeigt, was Caches, nicht benötigte Sprachen, Protokolle, Downloads und Papierkorb enthalten, und entfernt, was Sie ankreuzen.</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::AlertWindow</name>
    <message>
        <source>Do not show this message again</source>
        <translation>Diese Meldung nicht mehr anzeigen</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::FileListController</name>
    <message>
        <source>Remove...</source>
        <translation>Entfernen …</translation>
    </message>
    <message>
        <source>Move to Trash</source>
        <translation>In den Papierkorb legen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::IconButton</name>
    <message>
        <source>Open</source>
        <translation>Geöffnet</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::InfoWindow</name>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Link to %1</source>
        <translation>Verknüpfung mit %1</translation>
    </message>
    <message>
        <source>Special file</source>
        <translation>Spezialdatei</translation>
    </message>
    <message>
        <source>Information: %1</source>
        <translation>Informationen: %1</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Calculating...</source>
        <translation>Wird berechnet …</translation>
    </message>
    <message>
        <source>Where</source>
        <translation>Ort</translation>
    </message>
    <message>
        <source>Created</source>
        <translation>Erstellt</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Geändert</translation>
    </message>
    <message>
        <source>Last opened</source>
        <translation>Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Owner</source>
        <translation>Besitzer</translation>
    </message>
    <message>
        <source>%1, group %2</source>
        <translation>%1, Gruppe %2</translation>
    </message>
    <message>
        <source>Permissions</source>
        <translation>Zugriffsrechte</translation>
    </message>
    <message>
        <source>%1 (%2 bytes)</source>
        <translation>%1 (%2 Byte)</translation>
    </message>
    <message>
        <source>Original place</source>
        <translation>Ursprünglicher Ort</translation>
    </message>
    <message>
        <source>Deleted</source>
        <translation>Gelöscht</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Hinweis</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::ItemListController</name>
    <message>
        <source>Show in File Manager</source>
        <translation>Im Dateimanager anzeigen</translation>
    </message>
    <message>
        <source>Show Information</source>
        <translation>Informationen anzeigen</translation>
    </message>
    <message>
        <source>Sort By</source>
        <translation>Sortieren nach</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::ItemListModel</name>
    <message>
        <source>Selected</source>
        <translation>Ausgewählt</translation>
    </message>
    <message>
        <source>Icon</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Count</source>
        <translation>Anzahl</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>frees %1</source>
        <translation>gibt %1 frei</translation>
    </message>
    <message>
        <source>Removing it frees %1. Snapshots of the file system may still hold that space.</source>
        <translation>Das Entfernen gibt %1 frei. Schnappschüsse des Dateisystems können diesen Platz weiter belegen.</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::LanguagesDrawer</name>
    <message>
        <source>Languages to keep</source>
        <translation>Sprachen behalten</translation>
    </message>
    <message>
        <source>Localizations in unchecked languages can be removed. English always stays.</source>
        <translation>Lokalisierungen ohne Häkchen können entfernt werden. Englisch bleibt immer.</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::LanguagesTableView</name>
    <message>
        <source>Languages</source>
        <translation>Sprachen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::ListPanel</name>
    <message>
        <source>Show Information</source>
        <translation>Informationen anzeigen</translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation>Im Dateimanager anzeigen</translation>
    </message>
    <message>
        <source>Clean progress</source>
        <translation>Fortschritt der Bereinigung</translation>
    </message>
    <message>
        <source>%1. Snapshots of the file system may still hold that space.</source>
        <translation>%1. Schnappschüsse des Dateisystems können diesen Platz weiter belegen.</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::MainMenu</name>
    <message>
        <source>Share</source>
        <translation>Weiterempfehlen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::MainWindow</name>
    <message>
        <source>Languages</source>
        <translation>Sprachen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::MenuCommands</name>
    <message>
        <source>Languages to Keep</source>
        <translation>Behaltene Sprachen</translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation>Im Dateimanager anzeigen</translation>
    </message>
    <message>
        <source>Show Information</source>
        <translation>Informationen anzeigen</translation>
    </message>
    <message>
        <source>Remove...</source>
        <translation>Entfernen …</translation>
    </message>
    <message>
        <source>By Mail...</source>
        <translation>Per E-Mail …</translation>
    </message>
    <message>
        <source>Send Feedback...</source>
        <translation>Rückmeldung senden …</translation>
    </message>
    <message>
        <source>About Brimvault</source>
        <translation>Über Brimvault</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Ask Before Cleaning</source>
        <translation>Vor dem Bereinigen fragen</translation>
    </message>
    <message>
        <source>Send FeedBack. Brimvault</source>
        <translation>Rückmeldung zu Brimvault</translation>
    </message>
    <message>
        <source>Thank you for using Brimvault.

What would make it better? Every idea is welcome:

</source>
        <translation>Vielen Dank, dass Sie Brimvault verwenden.

Was würde es besser machen? Jede Idee ist willkommen:

</translation>
    </message>
    <message>
        <source>Brimvault frees disk space: it shows what caches, unneeded languages, logs, downloads and the trash hold, and removes what you tick.

%1
</source>
        <translation>Brimvault gibt Speicherplatz frei: Es zeigt, was Caches, nicht benötigte Sprachen, Protokolle, Downloads und Papierkorb enthalten, und entfernt, was man ankreuzt.

%1
</translation>
    </message>
    <message>
        <source>Keep a History</source>
        <translation>Verlauf führen</translation>
    </message>
    <message>
        <source>Show History</source>
        <translation>Verlauf anzeigen</translation>
    </message>
    <message>
        <source>Move to Trash</source>
        <translation>In den Papierkorb legen</translation>
    </message>
    <message>
        <source>Undo Move to Trash</source>
        <translation>In den Papierkorb legen rückgängig machen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::MovedLine</name>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Moved %1 to the Trash</source>
        <translation>%1 in den Papierkorb gelegt</translation>
    </message>
    <message>
        <source>The space is freed when the Trash is emptied</source>
        <translation>Der Platz wird frei, wenn der Papierkorb geleert wird</translation>
    </message>
    <message>
        <source>Undo: put “%1” back</source>
        <translation>Rückgängig: „%1“ zurücklegen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::NotCleanedController</name>
    <message>
        <source>The clean was stopped, so other items may be left as well.</source>
        <translation>Die Bereinigung wurde gestoppt; weitere Objekte können übrig sein.</translation>
    </message>
    <message>
        <source>Everything else was cleaned.</source>
        <translation>Alles Übrige wurde bereinigt.</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::NotCleanedListView</name>
    <message>
        <source>Items that were not removed</source>
        <translation>Nicht entfernte Objekte</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy All</source>
        <translation>Alle kopieren</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::NotCleanedSheet</name>
    <message>
        <source>Some items were not removed</source>
        <translation>Einige Objekte wurden nicht entfernt</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::SectionListModel</name>
    <message>
        <source>Not scanned</source>
        <translation>Nicht gescannt</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::SectionPanels</name>
    <message>
        <source>1 application so far</source>
        <translation>Bisher 1 Programm</translation>
    </message>
    <message>
        <source>1 application</source>
        <translation>1 Programm</translation>
    </message>
    <message>
        <source>%1 applications so far</source>
        <translation>Bisher %1 Programme</translation>
    </message>
    <message>
        <source>%1 applications</source>
        <translation>%1 Programme</translation>
    </message>
    <message>
        <source>1 item so far</source>
        <translation>Bisher 1 Objekt</translation>
    </message>
    <message>
        <source>1 item</source>
        <translation>1 Objekt</translation>
    </message>
    <message>
        <source>%1 items so far</source>
        <translation>Bisher %1 Objekte</translation>
    </message>
    <message>
        <source>%1 items</source>
        <translation>%1 Objekte</translation>
    </message>
    <message>
        <source>Scanning...</source>
        <translation>Wird gescannt …</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::SectionsTableView</name>
    <message>
        <source>Sections</source>
        <translation>Bereiche</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::SelectAllButton</name>
    <message>
        <source>Select All</source>
        <translation>Alle auswählen</translation>
    </message>
    <message>
        <source>Unselect All</source>
        <translation>Alle abwählen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::SidebarPanel</name>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Scan progress</source>
        <translation>Fortschritt des Scans</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::StartPage</name>
    <message>
        <source>Start Scan</source>
        <translation>Scan starten</translation>
    </message>
    <message>
        <source>Free up disk space</source>
        <translation>Speicherplatz freigeben</translation>
    </message>
    <message>
        <source>Caches, unneeded languages, logs, downloads and the trash:
see what each one holds, tick what may go, and clean.</source>
        <translation>Caches, nicht benötigte Sprachen, Protokolle, Downloads und der Papierkorb:
ansehen, was sie enthalten, auswählen, was weg kann, und bereinigen.</translation>
    </message>
    <message>
        <source>Select sections and press Scan button</source>
        <translation>Bereiche auswählen und auf „Scannen“ klicken</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::TSectionViewController</name>
    <message>
        <source>No category selected</source>
        <translation>Kein Bereich ausgewählt</translation>
    </message>
    <message>
        <source>You should select category to scan.
Select all and scan?</source>
        <translation>Zum Scannen muss mindestens ein Bereich ausgewählt sein.
Alle auswählen und scannen?</translation>
    </message>
    <message>
        <source>Stop Scanning</source>
        <translation>Scan stoppen</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Scannen</translation>
    </message>
    <message>
        <source>Stop Cleaning</source>
        <translation>Bereinigung stoppen</translation>
    </message>
    <message>
        <source>Clean</source>
        <translation>Bereinigen</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::TrashMoves</name>
    <message>
        <source>“%1” could not be moved to the Trash</source>
        <translation>„%1“ konnte nicht in den Papierkorb gelegt werden</translation>
    </message>
    <message>
        <source>“%1” could not be put back</source>
        <translation>„%1“ konnte nicht zurückgelegt werden</translation>
    </message>
    <message>
        <source>Only a part of “%1” could be moved to the Trash</source>
        <translation>„%1“ konnte nur zum Teil in den Papierkorb verschoben werden</translation>
    </message>
    <message>
        <source>Only a part of “%1” could be put back</source>
        <translation>„%1“ konnte nur zum Teil zurückgelegt werden</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::UtilMod</name>
    <message>
        <source>Can&apos;t open a mail program</source>
        <translation>Kein E-Mail-Programm gefunden</translation>
    </message>
    <message>
        <source>No program for mail answers.</source>
        <translation>Kein E-Mail-Programm antwortet.</translation>
    </message>
    <message>
        <source>No program for mail answers. The address is %1</source>
        <translation>Kein E-Mail-Programm antwortet. Die Adresse lautet %1</translation>
    </message>
    <message>
        <source>There is no history yet</source>
        <translation>Es gibt noch keinen Verlauf</translation>
    </message>
    <message>
        <source>What Brimvault removes, and what it could not remove, will be listed there.</source>
        <translation>Dort steht künftig, was Brimvault entfernt und was sich nicht entfernen ließ.</translation>
    </message>
    <message>
        <source>Can&apos;t show the history</source>
        <translation>Der Verlauf kann nicht angezeigt werden</translation>
    </message>
    <message>
        <source>No program for text files answers. The history is in %1</source>
        <translation>Kein Programm für Textdateien antwortet. Der Verlauf liegt in %1</translation>
    </message>
</context>
<context>
    <name>brimvault::ui::WhiteTitleButton</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
</TS>
