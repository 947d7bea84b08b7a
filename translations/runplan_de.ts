<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>CFrame</name>
    <message>
        <source>Delete multiple items</source>
        <translation>Mehrere Elemente löschen</translation>
    </message>
    <message>
        <source>Do you want to delete this component and all the components attached to it?</source>
        <translation>Möchten Sie diese Komponente und alle daran angeschlossenen Komponenten löschen?</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
</context>
<context>
    <name>CFrameItemDelegate</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1: %2 + Junction Box</source>
        <translation>%1: %2 + Abzweigdose</translation>
    </message>
    <message>
        <source>%1 - %2 ft</source>
        <translation>%1 - %2 ft</translation>
    </message>
    <message>
        <source>Branch Wire - %2 ft</source>
        <translation>Abzweigleitung - %2 ft</translation>
    </message>
</context>
<context>
    <name>CWidgetModel</name>
    <message>
        <source>Selected Component</source>
        <translation>Ausgewählte Komponente</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Gauge</source>
        <translation>Querschnitt</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Junction Box</source>
        <translation>Abzweigdose</translation>
    </message>
    <message>
        <source>Output Mode</source>
        <translation>Ausgabemodus</translation>
    </message>
    <message>
        <source>Input Mode</source>
        <translation>Eingangsmodus</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Verlegeort</translation>
    </message>
    <message>
        <source>DL / Line Voltage Length</source>
        <translation>DL-/Netzspannungslänge</translation>
    </message>
</context>
<context>
    <name>DialogPrompter</name>
    <message>
        <source>This operation will clear the current configuration</source>
        <translation>Dieser Vorgang leert die aktuelle Konfiguration</translation>
    </message>
    <message>
        <source>Do you want to continue?</source>
        <translation>Möchten Sie fortfahren?</translation>
    </message>
    <message>
        <source>Do you want to save the changes you made to the configuration &apos;%1&apos;?</source>
        <translation>Möchten Sie die Änderungen an der Konfiguration &apos;%1&apos; speichern?</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don&apos;t save them.</source>
        <translation>Ihre Änderungen gehen verloren, wenn Sie sie nicht speichern.</translation>
    </message>
    <message>
        <source> already exists. Do you want to replace it?</source>
        <translation> ist bereits vorhanden. Möchten Sie die Datei ersetzen?</translation>
    </message>
    <message>
        <source>A file or folder with the same name already exists in the folder </source>
        <translation>Eine Datei oder ein Ordner mit demselben Namen befindet sich bereits im Ordner </translation>
    </message>
    <message>
        <source>. Replacing it will overwrite its current contents.</source>
        <translation>. Beim Ersetzen wird der bisherige Inhalt überschrieben.</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Delete multiple items</source>
        <translation>Mehrere Elemente löschen</translation>
    </message>
    <message>
        <source>Do you want to delete this component and all the components attached to it?</source>
        <translation>Möchten Sie diese Komponente und alle daran angeschlossenen Komponenten löschen?</translation>
    </message>
    <message>
        <source>%1 was not read completely. Replace it with the configuration as shown?</source>
        <translation>%1 wurde nicht vollständig gelesen. Durch die angezeigte Konfiguration ersetzen?</translation>
    </message>
</context>
<context>
    <name>LoadingDialog</name>
    <message>
        <source>Working, please wait...</source>
        <translation>Wird bearbeitet, bitte warten …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Runplan</source>
        <translation>Runplan</translation>
    </message>
</context>
<context>
    <name>ProjectFile</name>
    <message>
        <source>Linea Trough Model A Dynaline 6in</source>
        <translation>Linea Trough Model A Dynaline 6in</translation>
    </message>
    <message>
        <source>Linea Trough Model A Dynaline 6in (100v - 120v)</source>
        <translation>Linea Trough Model A Dynaline 6in (100v - 120v)</translation>
    </message>
    <message>
        <source>Linea Trough Model B Dynaline 6in</source>
        <translation>Linea Trough Model B Dynaline 6in</translation>
    </message>
    <message>
        <source>Linea Trough Model B Dynaline 6in (100v - 120v)</source>
        <translation>Linea Trough Model B Dynaline 6in (100v - 120v)</translation>
    </message>
    <message>
        <source>Glowbar Tunable Dynaline 1ft</source>
        <translation>Glowbar Tunable Dynaline 1ft</translation>
    </message>
    <message>
        <source>Stylebar Tunable Dynaline 1ft</source>
        <translation>Stylebar Tunable Dynaline 1ft</translation>
    </message>
    <message>
        <source>Glowbar Tint (RGBA/RGBW) Dynaline 1ft</source>
        <translation>Glowbar Tint (RGBA/RGBW) Dynaline 1ft</translation>
    </message>
    <message>
        <source>Stylebar Tint (RGBA/RGBW) Dynaline 1ft</source>
        <translation>Stylebar Tint (RGBA/RGBW) Dynaline 1ft</translation>
    </message>
    <message>
        <source>Glowbar Tunable Dynaline 4ft</source>
        <translation>Glowbar Tunable Dynaline 4ft</translation>
    </message>
    <message>
        <source>Stylebar Tunable Dynaline 4ft</source>
        <translation>Stylebar Tunable Dynaline 4ft</translation>
    </message>
    <message>
        <source>Glowbar Tint (RGBA/RGBW) Dynaline 4ft</source>
        <translation>Glowbar Tint (RGBA/RGBW) Dynaline 4ft</translation>
    </message>
    <message>
        <source>Stylebar Tint (RGBA/RGBW) Dynaline 4ft</source>
        <translation>Stylebar Tint (RGBA/RGBW) Dynaline 4ft</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Other</translation>
    </message>
    <message>
        <source>Failed to save configuration: %1</source>
        <translation>Konfiguration konnte nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>Save Error</source>
        <translation>Fehler beim Speichern</translation>
    </message>
    <message>
        <source>Cannot open file %1:
%2.</source>
        <translation>Die Datei %1 kann nicht geöffnet werden:
%2.</translation>
    </message>
    <message>
        <source>Failed to save configuration file: %1</source>
        <translation>Konfigurationsdatei konnte nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>Configuration saved</source>
        <translation>Konfiguration gespeichert</translation>
    </message>
    <message>
        <source>Failed to open configuration: %1</source>
        <translation>Konfiguration konnte nicht geöffnet werden: %1</translation>
    </message>
    <message>
        <source>Failed to open configuration %1: %2</source>
        <translation>Konfiguration %1 konnte nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>Open Error</source>
        <translation>Fehler beim Öffnen</translation>
    </message>
    <message>
        <source>Cannot read file %1:
%2.</source>
        <translation>Die Datei %1 kann nicht gelesen werden:
%2.</translation>
    </message>
    <message>
        <source>Failed to open configuration %1</source>
        <translation>Konfiguration %1 konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Found %1 CFrame elements</source>
        <translation>%1 CFrame-Elemente gefunden</translation>
    </message>
    <message>
        <source>Found NULL CFrame node</source>
        <translation>Leerer CFrame-Knoten gefunden</translation>
    </message>
    <message>
        <source>Found NULL CFrame element</source>
        <translation>Leeres CFrame-Element gefunden</translation>
    </message>
    <message>
        <source>The project</source>
        <translation>Das Projekt</translation>
    </message>
    <message>
        <source>Cannot open %1 as a project:
%2.</source>
        <translation>%1 kann nicht als Projekt geöffnet werden:
%2.</translation>
    </message>
    <message>
        <source>line %1, column %2: %3</source>
        <translation>Zeile %1, Spalte %2: %3</translation>
    </message>
    <message>
        <source>nested more than %1 levels</source>
        <translation>mehr als %1 Ebenen tief verschachtelt</translation>
    </message>
    <message>
        <source>a component holds more than %1 others</source>
        <translation>eine Komponente enthält mehr als %1 andere</translation>
    </message>
    <message>
        <source>not well-formed XML (%1)</source>
        <translation>kein wohlgeformtes XML (%1)</translation>
    </message>
    <message>
        <source>its root element is &quot;%1&quot;, not &quot;Runplan&quot;</source>
        <translation>sein Wurzelelement ist &quot;%1&quot;, nicht &quot;Runplan&quot;</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Configuration Files (*.rpproj);;All Files (*.* *)</source>
        <translation>Konfigurationsdateien (*.rpproj);;Alle Dateien (*.* *)</translation>
    </message>
</context>
<context>
    <name>Runplan</name>
    <message>
        <source>Vorlux Runplan Version  %1.%2.%3 Build %4-%5</source>
        <translation>Vorlux Runplan Version  %1.%2.%3 Build %4-%5</translation>
    </message>
    <message>
        <source>Database version %1</source>
        <translation>Database version %1</translation>
    </message>
    <message>
        <source>Create a new configuration</source>
        <translation>Eine neue Konfiguration anlegen</translation>
    </message>
    <message>
        <source>Open an exisiting configuration, checking for unsaved changes</source>
        <translation>Eine vorhandene Konfiguration öffnen, nicht gespeicherte Änderungen werden geprüft</translation>
    </message>
    <message>
        <source>Save the current configuration</source>
        <translation>Die aktuelle Konfiguration speichern</translation>
    </message>
    <message>
        <source>Save the current configuration to as a new filename</source>
        <translation>Die aktuelle Konfiguration unter einem neuen Dateinamen speichern</translation>
    </message>
    <message>
        <source>Delete the selected component and its children</source>
        <translation>Die ausgewählte Komponente und ihre Unterkomponenten löschen</translation>
    </message>
    <message>
        <source>Add the maximum number of fixtures starting from the selected component</source>
        <translation>Ab der ausgewählten Komponente die größtmögliche Zahl von Leuchten hinzufügen</translation>
    </message>
    <message>
        <source>Output maximum number of each fixture for each voltage it supports to a csv file</source>
        <translation>Die Höchstzahl jeder Leuchte bei jeder unterstützten Spannung in eine CSV-Datei schreiben</translation>
    </message>
    <message>
        <source>Output maximum number specified fixture for each voltage it supports to a csv file</source>
        <translation>Die Höchstzahl der gewählten Leuchte bei jeder unterstützten Spannung in eine CSV-Datei schreiben</translation>
    </message>
    <message>
        <source>Print...</source>
        <translation>Drucken …</translation>
    </message>
    <message>
        <source>Quit the application, checking for unsaved changes</source>
        <translation>Das Programm beenden, nicht gespeicherte Änderungen werden geprüft</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Other</translation>
    </message>
    <message>
        <source>Fixture combo mismatch (DL)!</source>
        <translation>Leuchtenauswahl stimmt nicht überein (DL)!</translation>
    </message>
    <message>
        <source>Runplan: the catalog %1 is not valid; nothing was exported.</source>
        <translation>Runplan: Der Katalog %1 ist ungültig; es wurde nichts exportiert.</translation>
    </message>
    <message>
        <source>Select file</source>
        <translation>Datei auswählen</translation>
    </message>
    <message>
        <source>CSV File (*.csv);; All Files (*.*)</source>
        <translation>CSV-Datei (*.csv);; Alle Dateien (*.*)</translation>
    </message>
    <message>
        <source>Runplan: cannot write %1: %2</source>
        <translation>Runplan: %1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Runplan: writing %1 failed: %2</source>
        <translation>Runplan: Schreiben von %1 fehlgeschlagen: %2</translation>
    </message>
    <message>
        <source>Untitled.rpproj</source>
        <translation>Untitled.rpproj</translation>
    </message>
    <message>
        <source>%1[*] - %2 Release %3.%4.%5 [Build %6-%7]</source>
        <translation>%1[*] - %2 Version %3.%4.%5 [Build %6-%7]</translation>
    </message>
    <message>
        <source>&amp;Save %1</source>
        <translation>%1 &amp;speichern</translation>
    </message>
    <message>
        <source>Save %1 &amp;As...</source>
        <translation>%1 speichern &amp;unter …</translation>
    </message>
    <message>
        <source>Open Configuration</source>
        <translation>Konfiguration öffnen</translation>
    </message>
    <message>
        <source>Save Configuration</source>
        <translation>Konfiguration speichern</translation>
    </message>
</context>
<context>
    <name>RunplanClass</name>
    <message>
        <source>Runplan</source>
        <translation>Runplan</translation>
    </message>
    <message>
        <source>Dynaline</source>
        <translation>Dynaline</translation>
    </message>
    <message>
        <source>Enabler:</source>
        <translation>Enabler:</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Fixture:</source>
        <translation>Leuchte:</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>Maximieren</translation>
    </message>
    <message>
        <source>Add:</source>
        <translation>Hinzufügen:</translation>
    </message>
    <message>
        <source>Jumper</source>
        <translation>Jumper</translation>
    </message>
    <message>
        <source>Leader</source>
        <translation>Zuleitung</translation>
    </message>
    <message>
        <source>Receiver</source>
        <translation>Receiver</translation>
    </message>
    <message>
        <source>Junction Box</source>
        <translation>Abzweigdose</translation>
    </message>
    <message>
        <source>Line Voltage:</source>
        <translation>Netzspannung:</translation>
    </message>
    <message>
        <source>100</source>
        <translation>100</translation>
    </message>
    <message>
        <source>120</source>
        <translation>120</translation>
    </message>
    <message>
        <source>208</source>
        <translation>208</translation>
    </message>
    <message>
        <source>220</source>
        <translation>220</translation>
    </message>
    <message>
        <source>240</source>
        <translation>240</translation>
    </message>
    <message>
        <source>277</source>
        <translation>277</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Other</translation>
    </message>
    <message>
        <source>VAC</source>
        <translation>VAC</translation>
    </message>
    <message>
        <source>Frequency:</source>
        <translation>Frequenz:</translation>
    </message>
    <message>
        <source>50 Hz</source>
        <translation>50 Hz</translation>
    </message>
    <message>
        <source>60 Hz</source>
        <translation>60 Hz</translation>
    </message>
    <message>
        <source>Max Circuit Load:</source>
        <translation>Max. Kreislast:</translation>
    </message>
    <message>
        <source>15</source>
        <translation>15</translation>
    </message>
    <message>
        <source>20</source>
        <translation>20</translation>
    </message>
    <message>
        <source>Amps</source>
        <translation>Ampere</translation>
    </message>
    <message>
        <source>(derated to xx amps)</source>
        <translation>(reduziert auf xx Ampere)</translation>
    </message>
    <message>
        <source>Zoom:</source>
        <translation>Zoom:</translation>
    </message>
    <message>
        <source>Controller:</source>
        <translation>Controller:</translation>
    </message>
    <message>
        <source>Total Power:  </source>
        <translation>Gesamtleistung:  </translation>
    </message>
    <message>
        <source>watts  </source>
        <translation>Watt  </translation>
    </message>
    <message>
        <source>amps</source>
        <translation>Ampere</translation>
    </message>
    <message>
        <source>Calculate</source>
        <translation>Berechnen</translation>
    </message>
    <message>
        <source>Feedwise Length:</source>
        <translation>Feedwise-Länge:</translation>
    </message>
    <message>
        <source>ft</source>
        <translation>ft</translation>
    </message>
    <message>
        <source>Total Fixtures: 1</source>
        <translation>Leuchten gesamt: 1</translation>
    </message>
    <message>
        <source>Ribbon String</source>
        <translation>Ribbon String</translation>
    </message>
    <message>
        <source>Pixelon Fixture</source>
        <translation>Pixelon Fixture</translation>
    </message>
    <message>
        <source>Tintrail</source>
        <translation>Tintrail</translation>
    </message>
    <message>
        <source>Output Log</source>
        <translation>Ausgabeprotokoll</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Ansicht</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Tool Bar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Create a new configuration</source>
        <translation>Eine neue Konfiguration anlegen</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>Open...</source>
        <translation>Öffnen …</translation>
    </message>
    <message>
        <source>Open an existing configuration</source>
        <translation>Eine vorhandene Konfiguration öffnen</translation>
    </message>
    <message>
        <source>Ctrl+O</source>
        <translation>Ctrl+O</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Save the configuration</source>
        <translation>Die Konfiguration speichern</translation>
    </message>
    <message>
        <source>Ctrl+S</source>
        <translation>Ctrl+S</translation>
    </message>
    <message>
        <source>Save As...</source>
        <translation>Speichern unter …</translation>
    </message>
    <message>
        <source>Save the configuration to a new file</source>
        <translation>Die Konfiguration in einer neuen Datei speichern</translation>
    </message>
    <message>
        <source>Ctrl+A</source>
        <translation>Ctrl+A</translation>
    </message>
    <message>
        <source>&amp;Print...</source>
        <translation>&amp;Drucken …</translation>
    </message>
    <message>
        <source>Ctrl+P</source>
        <translation>Ctrl+P</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Quit the application</source>
        <translation>Das Programm beenden</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Del</source>
        <translation>Del</translation>
    </message>
    <message>
        <source>Ctrl+M</source>
        <translation>Ctrl+M</translation>
    </message>
    <message>
        <source>Maximize All Fixtures to File...</source>
        <translation>Alle Leuchten maximiert in Datei …</translation>
    </message>
    <message>
        <source>Maximize Current Fixture to File...</source>
        <translation>Aktuelle Leuchte maximiert in Datei …</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Line Color Key</source>
        <translation>Leitungsfarben</translation>
    </message>
    <message>
        <source>Toggle Line Color Key</source>
        <translation>Leitungsfarben ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Ctrl+K</source>
        <translation>Ctrl+K</translation>
    </message>
    <message>
        <source>About...</source>
        <translation>Über …</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>Ausschneiden</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Einfügen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Ctrl+X</source>
        <translation>Ctrl+X</translation>
    </message>
    <message>
        <source>Print...</source>
        <translation>Drucken …</translation>
    </message>
    <message>
        <source>Add Receiver</source>
        <translation>Receiver hinzufügen</translation>
    </message>
    <message>
        <source>Add Jumper</source>
        <translation>Jumper hinzufügen</translation>
    </message>
    <message>
        <source>Add Junction Box</source>
        <translation>Abzweigdose hinzufügen</translation>
    </message>
    <message>
        <source>Maximize All Fixures</source>
        <translation>Alle Leuchten maximieren</translation>
    </message>
</context>
<context>
    <name>SettingsDlg</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>HTTP Proxy</source>
        <translation>HTTP-Proxy</translation>
    </message>
    <message>
        <source>Use a proxy to access the internet</source>
        <translation>Für den Internetzugang einen Proxy verwenden</translation>
    </message>
    <message>
        <source>HTTP Proxy:</source>
        <translation>HTTP-Proxy:</translation>
    </message>
    <message>
        <source>Username:</source>
        <translation>Benutzername:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Updates</source>
        <translation>Aktualisierungen</translation>
    </message>
    <message>
        <source>Automatically check for updates</source>
        <translation>Automatisch nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>Check Now</source>
        <translation>Jetzt prüfen</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Prüfen alle</translation>
    </message>
    <message>
        <source>days</source>
        <translation>Tage</translation>
    </message>
</context>
<context>
    <name>SplashScreen</name>
    <message>
        <source>Version: %1.%2.%3 %4-%5</source>
        <translation>Version: %1.%2.%3 %4-%5</translation>
    </message>
    <message>
        <source>%1 %2 Vorlux Lighting</source>
        <translation>%1 %2 Vorlux Lighting</translation>
    </message>
</context>
<context>
    <name>UpdateChecker</name>
    <message>
        <source>Update Error</source>
        <translation>Fehler bei der Aktualisierung</translation>
    </message>
    <message>
        <source>Unable to retrieve update file.</source>
        <translation>Die Aktualisierungsdatei konnte nicht abgerufen werden.</translation>
    </message>
    <message>
        <source>Update Available</source>
        <translation>Aktualisierung verfügbar</translation>
    </message>
    <message>
        <source>A newer version (%1) of this application is available.

Would you like to go to the download page?</source>
        <translation>Eine neuere Version (%1) dieses Programms ist verfügbar.

Möchten Sie die Download-Seite öffnen?</translation>
    </message>
    <message>
        <source>No Update Available</source>
        <translation>Keine Aktualisierung verfügbar</translation>
    </message>
    <message>
        <source>You have the latest version: v%1</source>
        <translation>Sie haben die neueste Version: v%1</translation>
    </message>
</context>
<context>
    <name>lineKeyUI</name>
    <message>
        <source>Form</source>
        <translation>Formular</translation>
    </message>
    <message>
        <source>Line Color Key</source>
        <translation>Leitungsfarben</translation>
    </message>
    <message>
        <source>Dynaline</source>
        <translation>Dynaline</translation>
    </message>
    <message>
        <source>Line Voltage</source>
        <translation>Netzspannung</translation>
    </message>
</context>
</TS>
