// SPDX-License-Identifier: Apache-2.0
#include "output/report.h"

namespace fp_inspect {

const char kReportStyle[] = R"(
:root { --paper: #f4f5f7; --card: #ffffff; --ink: #1a1f27; --soft: #515a68; --rule: #d5dae1;
  --good: #1766b5; --bad: #b8420b; --low: #7b3fa0; --step: #0b7258; --error: #a3123a;
  --track: #e6e9ee; --marked: #fdf1dc; }
@media screen and (prefers-color-scheme: dark) {
  :root { --paper: #11151b; --card: #1a2029; --ink: #e8ecf2; --soft: #a9b3c1; --rule: #38414e;
    --good: #6cb2f5; --bad: #ff9a62; --low: #cf9bf0; --step: #4fcfa8; --error: #ff86a3;
    --track: #2b333f; --marked: #3a3018; }
}
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 82rem; padding: 1rem; background: var(--paper);
  color: var(--ink); font: 1rem/1.45 system-ui, sans-serif; }
p, li, th:first-child { overflow-wrap: anywhere; }
footer { margin-top: 1rem; }
code { white-space: nowrap; }
h1 { font-size: 1.5rem; margin: 0 0 1rem; }
h2 { font-size: 1.15rem; margin: 0 0 .6rem; }
h3 { font-size: 1rem; margin: 0 0 .4rem; padding: 0 .5rem; border: 1px solid var(--rule);
  border-radius: .3rem; display: inline-block; }
p, ul { margin: 0 0 .7rem; }
ul { padding-left: 1.2rem; }
small, caption, footer, dd span { color: var(--soft); font-size: .85rem; }
.sides { display: grid; gap: 1rem; grid-template-columns: minmax(0, 1fr); }
section { background: var(--card); border: 1px solid var(--rule); border-radius: .6rem;
  padding: 1rem; margin-bottom: 1rem; break-inside: avoid; }
.sides div { min-width: 0; }
.verdict { font-size: 1.1rem; max-width: 60rem; }
dl { display: grid; grid-template-columns: repeat(auto-fill, minmax(8.5rem, 1fr)); gap: .5rem;
  margin: 0 0 .8rem; }
dl div { border: 1px solid var(--rule); border-radius: .4rem; padding: .4rem .6rem; }
dt { color: var(--soft); font-size: .85rem; }
dd { margin: 0; }
dd strong { font-size: 1.35rem; font-variant-numeric: tabular-nums; }
table { border-collapse: collapse; width: 100%; font-size: .9rem; margin: .4rem 0; }
caption { text-align: left; padding-bottom: .3rem; }
th, td { padding: .25rem .3rem; border-bottom: 1px solid var(--rule); text-align: right;
  vertical-align: top; font-variant-numeric: tabular-nums; font-weight: normal; }
thead th { color: var(--soft); vertical-align: bottom; }
td:has(svg) { width: 45%; }
th:first-child { text-align: left; min-width: 5.8em; }
small { display: block; }
td small { display: inline-block; padding-left: .5rem; }
tr.significant { background: var(--marked); }
tr.covered th, tr.covered td { border-bottom: 2px dashed var(--soft); }
svg { display: block; width: 100%; height: auto; font-size: 14px; }
svg.bar { height: .7rem; width: 100%; min-width: 4rem; margin: .15rem 0; max-width: 28rem; }
svg.key { width: 1rem; height: 1rem; display: inline-block; vertical-align: -.15rem;
  margin-right: .35rem; }
svg text { fill: var(--ink); stroke: var(--card); stroke-width: 3; paint-order: stroke; }
text.mid { text-anchor: middle; }
text.end { text-anchor: end; }
path, rect { fill: none; stroke-width: 1.3; vector-effect: non-scaling-stroke; }
.axis { stroke: var(--ink); }
.grid { stroke: var(--rule); }
.limit { stroke: var(--soft); stroke-dasharray: 5 4; }
.start { stroke: var(--ink); stroke-dasharray: 1.5 2.5; }
.interval { stroke: var(--ink); stroke-width: 2; }
.good { stroke: var(--good); }
.bad { stroke: var(--bad); }
.low { stroke: var(--low); }
.none { stroke: var(--ink); fill: var(--card); stroke-width: 1; }
.track { fill: var(--track); }
.fill { stroke: none; }
.fill.good { fill: var(--good); }
.fill.bad { fill: var(--bad); }
.fill.cause { fill: var(--bad); }
.fill.step { fill: var(--step); }
.fill.error { fill: var(--error); }
.legend { list-style: none; padding: 0; margin: .4rem 0 .8rem; display: flex; flex-wrap: wrap;
  gap: .15rem 1rem; font-size: .85rem; }
@media (min-width: 50rem) {
  .one { columns: 2; column-gap: 1rem; }
  .two .sides { grid-template-columns: repeat(2, minmax(0, 1fr)); column-gap: 2rem; }
  svg { font-size: 9px; }
}
@media (max-width: 30rem) {
  body { padding: .5rem; }
  section { padding: .7rem; }
  table { font-size: .8rem; }
  td small, th small { font-size: .75rem; }
  td:has(svg) { width: 30%; }
  th, td { padding: .25rem .15rem; }
}
@media print {
  :root { font-size: 80%; }
  body { max-width: none; padding: 0; background: none; }
  .two .sides { grid-template-columns: repeat(2, minmax(0, 1fr)); }
  section { border: none; padding: 0; break-inside: auto; }
  .one { columns: 1; }
  svg { font-size: 10px; }
  h2, svg, tr, .legend { break-inside: avoid; }
  h2, h3 { break-after: avoid; }
  * { print-color-adjust: exact; }
}
)";

}  // namespace fp_inspect
