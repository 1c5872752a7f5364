<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Actions</name>
    <message>
        <source>&amp;File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Acquisition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Co&amp;ntrast</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add Channels…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Keep Channel Settings for Files Alike</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Save Image As…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Channel S&amp;ettings As…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy as Co&amp;mmand</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show &amp;Batch Command for the Folder…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom &amp;Dyes…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Copy Image</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy Pixel &amp;Values</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Snap</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;1 Channel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;2 Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;3 Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulate Camera with &amp;4 Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulate Camera from &amp;Open Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Fit to Window</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;1:1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pre&amp;vious Z-Slice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Next Z-Slice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Previous &amp;Time Point</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Next Ti&amp;me Point</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Single Channel in &amp;Gray</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Colour-Blind-Safe Colours</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mark &amp;Saturated Pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Legend</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Scale &amp;Bar</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pi&amp;xel Size…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Channels Side b&amp;y Side</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>P&amp;anels in Colour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line P&amp;rofile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Pseudo-Colour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Inv&amp;ert LUT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Channel Pane&amp;l</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>F&amp;ull Screen</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Go to Channel List</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;5</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;6</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;7</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;8</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show or Hide Channel &amp;9</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show Selected Channel &amp;Only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show &amp;All Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Re&amp;name Channel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move Channel &amp;Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move Channel &amp;Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remo&amp;ve Channel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Right</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Left by 10 Pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Right by 10 Pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Up by 10 Pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift Channel Down by 10 Pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Reset All Offsets</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Go to Contrast Limits</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Auto-Contrast</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A&amp;uto-Contrast for All Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Continuous Auto-Contrast</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Full &amp;8-Bit Range</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Full 1&amp;0-Bit Range</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Full 1&amp;2-Bit Range</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Full 1&amp;4-Bit Range</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Full 1&amp;6-Bit Range</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Reset Contrast</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy Contrast to A&amp;ll Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Histogram over the Data Range</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Lo&amp;garithmic Histogram</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;About Lumetra Viewer</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>BatchCommand</name>
    <message>
        <source>the names of these files do not tell field and channel apart, as in A01_DAPI.tif and A01_FITC.tif</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>there is a batch command for channels that are in one file, or each in a file of its own</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DisplaySettings</name>
    <message>
        <source>channels expected: %1; in the camera&apos;s frame: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::Canvas</name>
    <message>
        <source>Image</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drop image files here, open them with Ctrl+O,
or start a simulated camera with F3</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::ChannelModel</name>
    <message>
        <source>%1 fixed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Click to show this channel only, and again to show all; double-click to choose a colour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1; double-click to rename it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>← %1 ↑ %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Visible</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Colour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Channel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Contrast limits</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Offset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The contrast limits of channel %1 were found at %2 bits, and the image has %3: they are measured again</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::ChannelPanel</name>
    <message>
        <source>Pixel values %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> · &lt;b&gt;%1 % saturated&lt;/b&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dye</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Offset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pixels to the left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>← </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pixels up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>↑ </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Black level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>White level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> % saturated</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pixels that auto-contrast saturates at each end</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saturated pixels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Continuous</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy to All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Range</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::CustomDyesDialog</name>
    <message>
        <source>Custom Dyes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Colour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom dyes (*.ini);;All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New dye</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Colour…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Load…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dyes without a name, or with the name of another dye, are not kept.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Loaded dyes: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saved dyes: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::DyeBox</name>
    <message>
        <source>Dye</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dye, or #rrggbb</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::FileOpener</name>
    <message>
        <source>Loaded settings %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::ImageSaver</name>
    <message>
        <source>Saved %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::LevelEditor</name>
    <message>
        <source>Histogram with black and white level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drag the handles to set black and white level</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::LutBar</name>
    <message>
        <source>LUT with pixel values</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::LutBox</name>
    <message>
        <source>LUT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>From a file…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open LUT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ImageJ LUTs (*.lut);;All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::MessageBar</name>
    <message>
        <source>Close the message</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::ProfileView</name>
    <message>
        <source>Pixel values along a line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Draw a line on the image with the mouse</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 pixels</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::StackBar</name>
    <message>
        <source>Z-slice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time point</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Projection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Projection of all z-slices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>One z-slice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Maximum projection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mean projection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Page</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>One page</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::StatusLine</name>
    <message>
        <source>x %1, y %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 µm/pixel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>pixel size unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 frames/s · %2 dropped</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::Viewer</name>
    <message>
        <source>Open the images first that the camera is to show</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Camera</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no command for camera images: they are not in files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There are no channels</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>lumetra::Window</name>
    <message>
        <source>Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line Profile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tools</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Panels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> frames/s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frames per second</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No frame from the camera for %1 s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Channels</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Images and settings (*.tif *.tiff *.png *.jpg *.jpeg *.bmp *.pgm *.ppm *.stk *.json);;All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Image</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PNG (*.png)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>TIFF (*.tif *.tiff)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JPEG (*.jpg *.jpeg)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Channel Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings (*.json)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pixel Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pixel size in the specimen (µm):</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a pixel size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Channel Settings for the Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Batch Command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This command renders every field of the folder with the settings shown here.
It is on the clipboard.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Command copied to the clipboard</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pixel values copied to the clipboard</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About Lumetra Viewer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;b&gt;Lumetra Viewer %1&lt;/b&gt;&lt;p&gt;Viewer for multi-channel fluorescence images, live and from files.&lt;p&gt;Free software under the MIT licence; running with Qt %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Lumetra Viewer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 — Lumetra Viewer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>P&amp;lay</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No scale bar: the pixel size is not known</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Show the channels as a settings file says.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add custom dyes from a file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start a simulated camera with 1 to 4 channels.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frames per second of the camera.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>lumetra-viewer: --%1 takes a number from %2 to %3
</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Viewer for multi-channel fluorescence images, live and from files.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Channels: FILE, FILE[c1,z3,t2] or FILE[PAGE], with =DYE+X+Y as for &apos;lumetra merge&apos;; a FILE that ends in .json holds settings.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
