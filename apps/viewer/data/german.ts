<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Actions</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Acquisition</source>
        <translation>&amp;Aufnahme</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>An&amp;sicht</translation>
    </message>
    <message>
        <source>&amp;Channels</source>
        <translation>&amp;Kanäle</translation>
    </message>
    <message>
        <source>Co&amp;ntrast</source>
        <translation>K&amp;ontrast</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>&amp;Add Channels…</source>
        <translation>Kanäle &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>&amp;Save Image As…</source>
        <translation>Bild &amp;speichern unter …</translation>
    </message>
    <message>
        <source>Save Channel S&amp;ettings As…</source>
        <translation>Kanal&amp;einstellungen speichern unter …</translation>
    </message>
    <message>
        <source>Copy as Co&amp;mmand</source>
        <translation>Als Be&amp;fehl kopieren</translation>
    </message>
    <message>
        <source>Show &amp;Batch Command for the Folder…</source>
        <translation>Befehl für den ganzen &amp;Ordner zeigen …</translation>
    </message>
    <message>
        <source>Custom &amp;Dyes…</source>
        <translation>Eigene &amp;Farbstoffe …</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>&amp;Copy Image</source>
        <translation>Bild &amp;kopieren</translation>
    </message>
    <message>
        <source>Copy Pixel &amp;Values</source>
        <translation>Pixel&amp;werte kopieren</translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation>&amp;Live</translation>
    </message>
    <message>
        <source>&amp;Snap</source>
        <translation>&amp;Einzelbild</translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;1 Channel</source>
        <translation>Kamera mit &amp;1 Kanal simulieren</translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;2 Channels</source>
        <translation>Kamera mit &amp;2 Kanälen simulieren</translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;3 Channels</source>
        <translation>Kamera mit &amp;3 Kanälen simulieren</translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;4 Channels</source>
        <translation>Kamera mit &amp;4 Kanälen simulieren</translation>
    </message>
    <message>
        <source>Simulate Camera from &amp;Open Files</source>
        <translation>Kamera aus geöffneten &amp;Dateien simulieren</translation>
    </message>
    <message>
        <source>&amp;Fit to Window</source>
        <translation>An &amp;Fenster anpassen</translation>
    </message>
    <message>
        <source>&amp;1:1</source>
        <translation>&amp;1:1</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>Pre&amp;vious Z-Slice</source>
        <translation>&amp;Vorige Z-Ebene</translation>
    </message>
    <message>
        <source>&amp;Next Z-Slice</source>
        <translation>&amp;Nächste Z-Ebene</translation>
    </message>
    <message>
        <source>Previous &amp;Time Point</source>
        <translation>Voriger &amp;Zeitpunkt</translation>
    </message>
    <message>
        <source>Next Ti&amp;me Point</source>
        <translation>Nächster Zeitp&amp;unkt</translation>
    </message>
    <message>
        <source>Single Channel in &amp;Gray</source>
        <translation>Einzelnen Kanal in &amp;Grau</translation>
    </message>
    <message>
        <source>&amp;Colour-Blind-Safe Colours</source>
        <translation>Farben auch für Farbenblin&amp;de</translation>
    </message>
    <message>
        <source>Mark &amp;Saturated Pixels</source>
        <translation>Ge&amp;sättigte Pixel markieren</translation>
    </message>
    <message>
        <source>&amp;Legend</source>
        <translation>&amp;Legende</translation>
    </message>
    <message>
        <source>Scale &amp;Bar</source>
        <translation>&amp;Maßstab</translation>
    </message>
    <message>
        <source>Pi&amp;xel Size…</source>
        <translation>Pi&amp;xelgröße …</translation>
    </message>
    <message>
        <source>Channels Side b&amp;y Side</source>
        <translation>Kanäle n&amp;ebeneinander</translation>
    </message>
    <message>
        <source>P&amp;anels in Colour</source>
        <translation>Einzelkanäle in F&amp;arbe</translation>
    </message>
    <message>
        <source>Line P&amp;rofile</source>
        <translation>Linienp&amp;rofil</translation>
    </message>
    <message>
        <source>&amp;Pseudo-Colour</source>
        <translation>&amp;Pseudofarben</translation>
    </message>
    <message>
        <source>Inv&amp;ert LUT</source>
        <translation>LUT umke&amp;hren</translation>
    </message>
    <message>
        <source>Channel Pane&amp;l</source>
        <translation>Kanal&amp;leiste</translation>
    </message>
    <message>
        <source>F&amp;ull Screen</source>
        <translation>Voll&amp;bild</translation>
    </message>
    <message>
        <source>&amp;Go to Channel List</source>
        <translation>&amp;Zur Kanalliste</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;1</source>
        <translation>Kanal &amp;1 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;2</source>
        <translation>Kanal &amp;2 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;3</source>
        <translation>Kanal &amp;3 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;4</source>
        <translation>Kanal &amp;4 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;5</source>
        <translation>Kanal &amp;5 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;6</source>
        <translation>Kanal &amp;6 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;7</source>
        <translation>Kanal &amp;7 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;8</source>
        <translation>Kanal &amp;8 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;9</source>
        <translation>Kanal &amp;9 zeigen oder verbergen</translation>
    </message>
    <message>
        <source>Show Selected Channel &amp;Only</source>
        <translation>&amp;Nur gewählten Kanal zeigen</translation>
    </message>
    <message>
        <source>Show &amp;All Channels</source>
        <translation>&amp;Alle Kanäle zeigen</translation>
    </message>
    <message>
        <source>Re&amp;name Channel</source>
        <translation>Kanal &amp;umbenennen</translation>
    </message>
    <message>
        <source>Move Channel &amp;Up</source>
        <translation>Kanal nach &amp;oben</translation>
    </message>
    <message>
        <source>Move Channel &amp;Down</source>
        <translation>Kanal nach un&amp;ten</translation>
    </message>
    <message>
        <source>Remo&amp;ve Channel</source>
        <translation>Kanal &amp;entfernen</translation>
    </message>
    <message>
        <source>Shift Channel Left</source>
        <translation>Kanal nach links schieben</translation>
    </message>
    <message>
        <source>Shift Channel Right</source>
        <translation>Kanal nach rechts schieben</translation>
    </message>
    <message>
        <source>Shift Channel Up</source>
        <translation>Kanal aufwärts schieben</translation>
    </message>
    <message>
        <source>Shift Channel Down</source>
        <translation>Kanal abwärts schieben</translation>
    </message>
    <message>
        <source>Shift Channel Left by 10 Pixels</source>
        <translation>Kanal 10 Pixel nach links schieben</translation>
    </message>
    <message>
        <source>Shift Channel Right by 10 Pixels</source>
        <translation>Kanal 10 Pixel nach rechts schieben</translation>
    </message>
    <message>
        <source>Shift Channel Up by 10 Pixels</source>
        <translation>Kanal 10 Pixel aufwärts schieben</translation>
    </message>
    <message>
        <source>Shift Channel Down by 10 Pixels</source>
        <translation>Kanal 10 Pixel abwärts schieben</translation>
    </message>
    <message>
        <source>&amp;Reset All Offsets</source>
        <translation>Alle &amp;Versätze zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Go to Contrast Limits</source>
        <translation>Zu den Kontrast&amp;grenzen</translation>
    </message>
    <message>
        <source>&amp;Auto-Contrast</source>
        <translation>&amp;Auto-Kontrast</translation>
    </message>
    <message>
        <source>A&amp;uto-Contrast for All Channels</source>
        <translation>A&amp;uto-Kontrast für alle Kanäle</translation>
    </message>
    <message>
        <source>&amp;Continuous Auto-Contrast</source>
        <translation>Auto-Kontrast in &amp;jedem Bild</translation>
    </message>
    <message>
        <source>Full &amp;8-Bit Range</source>
        <translation>Voller &amp;8-Bit-Bereich</translation>
    </message>
    <message>
        <source>Full 1&amp;0-Bit Range</source>
        <translation>Voller 1&amp;0-Bit-Bereich</translation>
    </message>
    <message>
        <source>Full 1&amp;2-Bit Range</source>
        <translation>Voller 1&amp;2-Bit-Bereich</translation>
    </message>
    <message>
        <source>Full 1&amp;4-Bit Range</source>
        <translation>Voller 1&amp;4-Bit-Bereich</translation>
    </message>
    <message>
        <source>Full 1&amp;6-Bit Range</source>
        <translation>Voller 1&amp;6-Bit-Bereich</translation>
    </message>
    <message>
        <source>&amp;Reset Contrast</source>
        <translation>Kontrast &amp;zurücksetzen</translation>
    </message>
    <message>
        <source>Copy Contrast to A&amp;ll Channels</source>
        <translation>Kontrast auf a&amp;lle Kanäle übertragen</translation>
    </message>
    <message>
        <source>&amp;Histogram over the Data Range</source>
        <translation>&amp;Histogramm über den Wertebereich</translation>
    </message>
    <message>
        <source>Lo&amp;garithmic Histogram</source>
        <translation>Lo&amp;garithmisches Histogramm</translation>
    </message>
    <message>
        <source>&amp;About Lumetra Viewer</source>
        <translation>Ü&amp;ber Lumetra Viewer</translation>
    </message>
    <message>
        <source>&amp;Keep Channel Settings for Similar Files</source>
        <translation>Kanaleinstellungen für gleichartige Dateien &amp;behalten</translation>
    </message>
</context>
<context>
    <name>BatchCommand</name>
    <message>
        <source>the names of these files do not tell field and channel apart, as in A01_DAPI.tif and A01_FITC.tif</source>
        <translation>die Namen dieser Dateien trennen Feld und Kanal nicht wie in A01_DAPI.tif und A01_FITC.tif</translation>
    </message>
    <message>
        <source>there is a batch command for channels that are in one file, or each in a file of its own</source>
        <translation>einen Befehl für den Ordner gibt es für Kanäle, die in einer Datei sind oder jeder in einer eigenen</translation>
    </message>
</context>
<context>
    <name>DisplaySettings</name>
    <message>
        <source>channels expected: %1; in the camera&apos;s frame: %2</source>
        <translation>erwartete Kanäle: %1; im Bild der Kamera: %2</translation>
    </message>
</context>
<context>
    <name>FileSource</name>
    <message>
        <source>%1: has %2 channels; choose one of them, as %1[c1]</source>
        <translation>%1: hat %2 Kanäle; einer ist zu wählen, wie %1[c1]</translation>
    </message>
    <message>
        <source>%1: has %2 z-slices, no %3</source>
        <translation>%1: hat %2 Z-Ebenen, keine %3</translation>
    </message>
    <message>
        <source>%1: has %2 time points, no %3</source>
        <translation>%1: hat %2 Zeitpunkte, keinen %3</translation>
    </message>
    <message>
        <source>the files have different numbers of planes: %1 has %2, %3 has %4</source>
        <translation>die Dateien haben verschieden viele Ebenen: %1 hat %2, %3 hat %4</translation>
    </message>
    <message>
        <source>%1: the viewer displays 8- and 16-bit unsigned integers, and this file has pixel values of another type; convert it to 16 bits, or render it with &apos;lumetra merge&apos;</source>
        <translation>%1: angezeigt werden ganze Zahlen mit 8 oder 16 Bit ohne Vorzeichen, und die Pixelwerte dieser Datei sind von anderer Art; in 16 Bit umwandeln oder mit &apos;lumetra merge&apos; ausgeben</translation>
    </message>
</context>
<context>
    <name>Reasons</name>
    <message>
        <source>there is no such file</source>
        <translation>die Datei gibt es nicht</translation>
    </message>
    <message>
        <source>is not a file</source>
        <translation>ist keine Datei</translation>
    </message>
    <message>
        <source>is empty</source>
        <translation>ist leer</translation>
    </message>
    <message>
        <source>is not a TIFF, PNG, JPEG, BMP, PGM or PPM file</source>
        <translation>ist keine TIFF-, PNG-, JPEG-, BMP-, PGM- oder PPM-Datei</translation>
    </message>
    <message>
        <source>is damaged</source>
        <translation>ist beschädigt</translation>
    </message>
    <message>
        <source>is damaged or cut short</source>
        <translation>ist beschädigt oder abgeschnitten</translation>
    </message>
    <message>
        <source>has colours, and a channel must be gray</source>
        <translation>hat Farben, ein Kanal muss aber grau sein</translation>
    </message>
    <message>
        <source>there is not enough memory</source>
        <translation>der Speicher reicht nicht aus</translation>
    </message>
    <message>
        <source>is also an input</source>
        <translation>wird auch gelesen</translation>
    </message>
    <message>
        <source>cannot be written</source>
        <translation>kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>images are written as .png, .tif, .tiff, .jpg or .jpeg</source>
        <translation>Bilder werden als .png, .tif, .tiff, .jpg oder .jpeg gespeichert</translation>
    </message>
    <message>
        <source>the offsets are so far apart that the shifted images do not overlap</source>
        <translation>die Versätze liegen so weit auseinander, dass sich die verschobenen Bilder nicht überlappen</translation>
    </message>
</context>
<context>
    <name>lumetra::Canvas</name>
    <message>
        <source>Image</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Drop image files here, open them with Ctrl+O,
or start a simulated camera with F3</source>
        <translation>Bilddateien hierher ziehen, mit Strg+O öffnen
oder mit F3 eine simulierte Kamera starten</translation>
    </message>
</context>
<context>
    <name>lumetra::ChannelModel</name>
    <message>
        <source>%1 fixed</source>
        <translation>%1 fest</translation>
    </message>
    <message>
        <source>Click to show this channel only, and again to show all; double-click to choose a colour</source>
        <translation>Klick zeigt nur diesen Kanal, noch einer wieder alle; Doppelklick wählt eine Farbe</translation>
    </message>
    <message>
        <source>%1; double-click to rename it</source>
        <translation>%1; Doppelklick zum Umbenennen</translation>
    </message>
    <message>
        <source>← %1 ↑ %2</source>
        <translation>← %1 ↑ %2</translation>
    </message>
    <message>
        <source>Visible</source>
        <translation>Sichtbar</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>Versatz</translation>
    </message>
    <message>
        <source>The contrast limits of channel %1 were found at %2 bits, and the image has %3: they are measured again</source>
        <translation>Die Kontrastgrenzen von Kanal %1 gelten für %2 Bit, das Bild hat %3: Sie werden neu bestimmt</translation>
    </message>
    <message>
        <source>Limits</source>
        <translation>Grenzen</translation>
    </message>
</context>
<context>
    <name>lumetra::ChannelPanel</name>
    <message>
        <source>Pixel values %1 to %2</source>
        <translation>Pixelwerte %1 bis %2</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Dye</source>
        <translation>Farbstoff</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>Versatz</translation>
    </message>
    <message>
        <source>Pixels to the left</source>
        <translation>Pixel nach links</translation>
    </message>
    <message>
        <source>← </source>
        <translation>← </translation>
    </message>
    <message>
        <source>Pixels up</source>
        <translation>Pixel nach oben</translation>
    </message>
    <message>
        <source>↑ </source>
        <translation>↑ </translation>
    </message>
    <message>
        <source>Black level</source>
        <translation>Schwarzpunkt</translation>
    </message>
    <message>
        <source>White level</source>
        <translation>Weißpunkt</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>Gamma</translation>
    </message>
    <message>
        <source> % saturated</source>
        <translation> % gesättigt</translation>
    </message>
    <message>
        <source>Pixels that auto-contrast saturates at each end</source>
        <translation>Pixel, die der Auto-Kontrast an jedem Ende sättigt</translation>
    </message>
    <message>
        <source>Saturated pixels</source>
        <translation>Gesättigte Pixel</translation>
    </message>
    <message>
        <source>Auto</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>Continuous</source>
        <translation>Jedes Bild</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Copy to All</source>
        <translation>Auf alle</translation>
    </message>
    <message>
        <source>Data Range</source>
        <translation>Wertebereich</translation>
    </message>
    <message>
        <source> · &lt;b&gt;%L1 % saturated&lt;/b&gt;</source>
        <translation> · &lt;b&gt;%L1 % gesättigt&lt;/b&gt;</translation>
    </message>
</context>
<context>
    <name>lumetra::CustomDyesDialog</name>
    <message>
        <source>Custom Dyes</source>
        <translation>Eigene Farbstoffe</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Custom dyes (*.ini);;All files (*)</source>
        <translation>Eigene Farbstoffe (*.ini);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>&amp;Hinzufügen</translation>
    </message>
    <message>
        <source>New dye</source>
        <translation>Neuer Farbstoff</translation>
    </message>
    <message>
        <source>&amp;Colour…</source>
        <translation>&amp;Farbe …</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;Load…</source>
        <translation>&amp;Laden …</translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation>&amp;Speichern …</translation>
    </message>
    <message>
        <source>Dyes without a name, or with the name of another dye, are not kept.</source>
        <translation>Farbstoffe ohne Namen oder mit dem Namen eines anderen gehen verloren.</translation>
    </message>
    <message>
        <source>Loaded dyes: %1</source>
        <translation>Geladene Farbstoffe: %1</translation>
    </message>
    <message>
        <source>Saved dyes: %1</source>
        <translation>Gespeicherte Farbstoffe: %1</translation>
    </message>
</context>
<context>
    <name>lumetra::DyeBox</name>
    <message>
        <source>Dye</source>
        <translation>Farbstoff</translation>
    </message>
    <message>
        <source>Dye, or #rrggbb</source>
        <translation>Farbstoff oder #rrggbb</translation>
    </message>
</context>
<context>
    <name>lumetra::FileOpener</name>
    <message>
        <source>Loaded settings %1</source>
        <translation>Einstellungen %1 geladen</translation>
    </message>
</context>
<context>
    <name>lumetra::LevelEditor</name>
    <message>
        <source>Histogram with black and white level</source>
        <translation>Histogramm mit Schwarz- und Weißpunkt</translation>
    </message>
    <message>
        <source>Drag the handles to set black and white level</source>
        <translation>Griffe ziehen, um Schwarz- und Weißpunkt zu setzen</translation>
    </message>
</context>
<context>
    <name>lumetra::LutBar</name>
    <message>
        <source>LUT with pixel values</source>
        <translation>LUT mit Pixelwerten</translation>
    </message>
</context>
<context>
    <name>lumetra::LutBox</name>
    <message>
        <source>LUT</source>
        <translation>LUT</translation>
    </message>
    <message>
        <source>From a file…</source>
        <translation>Aus einer Datei …</translation>
    </message>
    <message>
        <source>Open LUT</source>
        <translation>LUT öffnen</translation>
    </message>
    <message>
        <source>ImageJ LUTs (*.lut);;All files (*)</source>
        <translation>ImageJ-LUTs (*.lut);;Alle Dateien (*)</translation>
    </message>
</context>
<context>
    <name>lumetra::MessageBar</name>
    <message>
        <source>Close the message</source>
        <translation>Meldung schließen</translation>
    </message>
</context>
<context>
    <name>lumetra::ProfileView</name>
    <message>
        <source>Pixel values along a line</source>
        <translation>Pixelwerte entlang einer Linie</translation>
    </message>
    <message>
        <source>Draw a line on the image with the mouse</source>
        <translation>Mit der Maus eine Linie auf dem Bild ziehen</translation>
    </message>
    <message>
        <source>%1 pixels</source>
        <translation>%1 Pixel</translation>
    </message>
</context>
<context>
    <name>lumetra::StackBar</name>
    <message>
        <source>Z-slice</source>
        <translation>Z-Ebene</translation>
    </message>
    <message>
        <source>Time point</source>
        <translation>Zeitpunkt</translation>
    </message>
    <message>
        <source>Projection</source>
        <translation>Projektion</translation>
    </message>
    <message>
        <source>Projection of all z-slices</source>
        <translation>Projektion aller Z-Ebenen</translation>
    </message>
    <message>
        <source>One z-slice</source>
        <translation>Eine Z-Ebene</translation>
    </message>
    <message>
        <source>Maximum projection</source>
        <translation>Maximumprojektion</translation>
    </message>
    <message>
        <source>Mean projection</source>
        <translation>Mittelwertprojektion</translation>
    </message>
    <message>
        <source>Page</source>
        <translation>Seite</translation>
    </message>
    <message>
        <source>One page</source>
        <translation>Eine Seite</translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <translation>%1 / %2</translation>
    </message>
</context>
<context>
    <name>lumetra::StatusLine</name>
    <message>
        <source>x %1, y %2</source>
        <translation>x %1, y %2</translation>
    </message>
    <message>
        <source>pixel size unknown</source>
        <translation>Pixelgröße unbekannt</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%L1 µm/pixel</source>
        <translation>%L1 µm/Pixel</translation>
    </message>
    <message>
        <source>%L1 frames/s · %2 dropped</source>
        <translation>%L1 Bilder/s · %2 verworfen</translation>
    </message>
</context>
<context>
    <name>lumetra::Viewer</name>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>There is no command for camera images: they are not in files</source>
        <translation>Für Kamerabilder gibt es keinen Befehl: Sie sind in keiner Datei</translation>
    </message>
    <message>
        <source>There are no channels</source>
        <translation>Es gibt keine Kanäle</translation>
    </message>
    <message>
        <source>There is no image yet</source>
        <translation>Es gibt noch kein Bild</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>%1 gespeichert</translation>
    </message>
</context>
<context>
    <name>lumetra::Window</name>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Line Profile</source>
        <translation>Linienprofil</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>Einpassen</translation>
    </message>
    <message>
        <source>Panels</source>
        <translation>Nebeneinander</translation>
    </message>
    <message>
        <source> frames/s</source>
        <translation> Bilder/s</translation>
    </message>
    <message>
        <source>Frames per second</source>
        <translation>Bilder pro Sekunde</translation>
    </message>
    <message>
        <source>No frame from the camera for %1 s</source>
        <translation>Seit %1 s kein Bild von der Kamera</translation>
    </message>
    <message>
        <source>Add Channels</source>
        <translation>Kanäle hinzufügen</translation>
    </message>
    <message>
        <source>Images and settings (*.tif *.tiff *.png *.jpg *.jpeg *.bmp *.pgm *.ppm *.stk *.json);;All files (*)</source>
        <translation>Bilder und Einstellungen (*.tif *.tiff *.png *.jpg *.jpeg *.bmp *.pgm *.ppm *.stk *.json);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Save Image</source>
        <translation>Bild speichern</translation>
    </message>
    <message>
        <source>PNG (*.png)</source>
        <translation>PNG (*.png)</translation>
    </message>
    <message>
        <source>TIFF (*.tif *.tiff)</source>
        <translation>TIFF (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>JPEG (*.jpg *.jpeg)</source>
        <translation>JPEG (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>Save Channel Settings</source>
        <translation>Kanaleinstellungen speichern</translation>
    </message>
    <message>
        <source>Settings (*.json)</source>
        <translation>Einstellungen (*.json)</translation>
    </message>
    <message>
        <source>Pixel Size</source>
        <translation>Pixelgröße</translation>
    </message>
    <message>
        <source>Pixel size in the specimen (µm):</source>
        <translation>Pixelgröße im Präparat (µm):</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a pixel size</source>
        <translation>„%1“ ist keine Pixelgröße</translation>
    </message>
    <message>
        <source>Save Channel Settings for the Folder</source>
        <translation>Kanaleinstellungen für den Ordner speichern</translation>
    </message>
    <message>
        <source>Batch Command</source>
        <translation>Befehl für den Ordner</translation>
    </message>
    <message>
        <source>This command renders every field of the folder with the settings shown here.
It is on the clipboard.</source>
        <translation>Dieser Befehl stellt jedes Feld des Ordners mit diesen Einstellungen dar.
Er liegt in der Zwischenablage.</translation>
    </message>
    <message>
        <source>Command copied to the clipboard</source>
        <translation>Befehl in die Zwischenablage kopiert</translation>
    </message>
    <message>
        <source>Pixel values copied to the clipboard</source>
        <translation>Pixelwerte in die Zwischenablage kopiert</translation>
    </message>
    <message>
        <source>About Lumetra Viewer</source>
        <translation>Über Lumetra Viewer</translation>
    </message>
    <message>
        <source>&lt;b&gt;Lumetra Viewer %1&lt;/b&gt;&lt;p&gt;Viewer for multi-channel fluorescence images, live and from files.&lt;p&gt;Free software under the MIT licence; running with Qt %2.</source>
        <translation>&lt;b&gt;Lumetra Viewer %1&lt;/b&gt;&lt;p&gt;Betrachter für mehrkanalige Fluoreszenzbilder, live und aus Dateien.&lt;p&gt;Freie Software unter der MIT-Lizenz; läuft mit Qt %2.</translation>
    </message>
    <message>
        <source>Lumetra Viewer</source>
        <translation>Lumetra Viewer</translation>
    </message>
    <message>
        <source>%1 — Lumetra Viewer</source>
        <translation>%1 – Lumetra Viewer</translation>
    </message>
    <message>
        <source>P&amp;lay</source>
        <translation>Abspie&amp;len</translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation>&amp;Live</translation>
    </message>
    <message>
        <source>No scale bar: the pixel size is not known</source>
        <translation>Kein Maßstab: Die Pixelgröße ist nicht bekannt</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Show the channels as a settings file says.</source>
        <translation>Kanäle wie in einer Einstellungsdatei zeigen.</translation>
    </message>
    <message>
        <source>Add custom dyes from a file.</source>
        <translation>Eigene Farbstoffe aus einer Datei hinzufügen.</translation>
    </message>
    <message>
        <source>Start a simulated camera with 1 to 4 channels.</source>
        <translation>Simulierte Kamera mit 1 bis 4 Kanälen starten.</translation>
    </message>
    <message>
        <source>Frames per second of the camera.</source>
        <translation>Bilder pro Sekunde der Kamera.</translation>
    </message>
    <message>
        <source>lumetra-viewer: --%1 takes a number from %2 to %3
</source>
        <translation>lumetra-viewer: --%1 verlangt eine Zahl von %2 bis %3
</translation>
    </message>
    <message>
        <source>Viewer for multi-channel fluorescence images, live and from files.</source>
        <translation>Betrachter für mehrkanalige Fluoreszenzbilder, live und aus Dateien.</translation>
    </message>
    <message>
        <source>Channels: FILE, FILE[c1,z3,t2] or FILE[PAGE], with =DYE+X+Y as for &apos;lumetra merge&apos;; a FILE that ends in .json holds settings.</source>
        <translation>Kanäle: DATEI, DATEI[c1,z3,t2] oder DATEI[SEITE], mit =FARBSTOFF+X+Y wie bei „lumetra merge“; eine DATEI auf .json enthält Einstellungen.</translation>
    </message>
</context>
</TS>
