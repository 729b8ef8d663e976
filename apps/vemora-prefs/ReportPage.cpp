#include "ReportPage.h"

#include <set>

#include "Json.h"
#include "Levels.h"

namespace vemora::tool {
namespace {

constexpr char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<meta http-equiv="Content-Security-Policy"
 content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<title>Preferences</title>
<style>
:root { color-scheme: light dark; font: 15px/1.4 system-ui, sans-serif }
body { margin: 2em auto; max-width: 80em; padding: 0 1em }
code, td { font-family: ui-monospace, Consolas, monospace }
td { overflow-wrap: break-word; vertical-align: top }
td:nth-child(5) { overflow-wrap: anywhere }
table { border-collapse: collapse; width: 100% }
th, td { border-bottom: 1px solid #8886;
  padding: .3em .6em; text-align: left }
th { background: Canvas; position: sticky; top: 0 }
input { width: 18em }
input, select { font: inherit; margin-right: 1em; padding: .3em .5em }
.moved { color: #a40 }
@media (prefers-color-scheme: dark) { .moved { color: #fa6 } }
</style>
</head>
<body>
<h1>Preferences</h1>
)";

constexpr char kScript[] = R"(<script>
const text = document.getElementById('text'), level = document.getElementById('level');
const rows = [...document.querySelectorAll('tbody tr')];
function filter() {
  const wanted = text.value.toLowerCase();
  let shown = 0;
  for (const row of rows) {
    row.hidden = (level.value && row.cells[0].textContent !== level.value) ||
      !row.textContent.toLowerCase().includes(wanted);
    shown += row.hidden ? 0 : 1;
  }
  document.getElementById('count').textContent = shown + ' of ' + rows.length;
}
const start = new URLSearchParams(location.hash.slice(1));  // report.html#text=runs
text.value = start.get('text') ?? '';
level.value = start.get('level') ?? '';
text.oninput = level.onchange = filter;
filter();
</script>
</body>
</html>
)";

std::string Html(std::string_view text) {
  std::string html;
  for (const char unit : text) {
    switch (unit) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '"':
        html += "&quot;";
        break;
      default:
        html += unit;
    }
  }
  return html;
}

std::string Element(const std::string& name, const std::string& text) {
  return '<' + name + '>' + Html(text) + "</" + name + ">\n";
}

std::string Row(const ReportedEntry& reported) {
  const Entry& entry = reported.entry;
  const bool is_moved = LevelName(entry.level) != reported.default_level;
  std::string row = is_moved ? "<tr class=\"moved\">\n" : "<tr>\n";
  for (const std::string& cell :
       {LevelName(entry.level), ToQuotedName(entry.category), ToQuotedName(entry.key),
        TypeName(entry.value), ToQuotedText(entry.value), reported.default_level, reported.rule}) {
    row += Element("td", cell);
  }
  return row + "</tr>\n";
}

std::string Filters(const Report& report) {
  std::set<EShareLevel> levels;
  for (const ReportedEntry& reported : report.entries) {
    levels.insert(reported.entry.level);
  }
  std::string html =
      "<p><input id=\"text\" type=\"search\" placeholder=\"Search names and values\" autofocus>"
      "<select id=\"level\"><option value=\"\">All levels</option>\n";
  for (const EShareLevel level : levels) {
    html += Element("option", LevelName(level));
  }
  return html + "</select><span id=\"count\"></span></p>\n";
}

}  // namespace

std::string MakeReportPage(const Report& report) {
  std::string page = kHead + Element("p", report.place);
  if (!report.findings.empty()) {
    page += Element("h2", "Findings") + "<ul>\n";
    for (const std::string& finding : report.findings) {
      page += Element("li", finding);
    }
    page += "</ul>\n" + Element("h2", "Values");
  }
  page += Filters(report) + "<table>\n<thead><tr>\n";
  for (const char* const title :
       {"Level", "Category", "Key", "Type", "Value", "Default level", "Rule"}) {
    page += Element("th", title);
  }
  page += "</tr></thead>\n<tbody>\n";
  for (const ReportedEntry& reported : report.entries) {
    page += Row(reported);
  }
  return page + "</tbody>\n</table>\n" + kScript;
}

}  // namespace vemora::tool
