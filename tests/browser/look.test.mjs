// What surrounds the controls: nothing covers anything, and what people have folded stays so.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openNamed, openPage, withConsole } from './console.mjs'

let console
let page

withConsole({ sample: true }, started => ({ console, page } = started))

const boxOf = locator => locator.evaluate(element => element.getBoundingClientRect().toJSON())
const overlap = (a, b) => a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom

test('the number of failures stands beside its icon', async () => {
  await openPage(page, 'All controls', 'allcontrols')
  const wrong = page.getByRole('button', { name: 'Run a wrong statement' })
  for (let failures = 0; failures < 12; ++failures) await wrong.click()
  const badge = page.locator('.badge')
  await badge.getByText('12').waitFor()
  for (const width of [1440, 390]) {
    await page.setViewportSize({ width, height: 844 })
    assert.ok(!overlap(await boxOf(badge), await boxOf(page.locator('.activity-button .icon'))), `at ${width}`)
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `at ${width}`)
  }
  await page.setViewportSize({ width: 1440, height: 900 })
})

test('tool tips leave rows alone, have room at the edge of the window, and switches need none', async () => {
  await openPage(page, 'Domains', 'domainbw')
  const tip = page.locator('.tooltip')
  const shown = async locator => {
    await locator.hover()
    await tip.and(page.locator(':popover-open')).waitFor()
    return boxOf(tip)
  }
  const black = page.getByRole('group', { name: 'Black list' })
  await shown(black.getByRole('button', { name: 'Remove' }))
  // The tip goes as soon as the pointer rests on a row, and none comes in its place.
  await black.locator('.list-row').nth(6).hover()
  await tip.and(page.locator(':not(:popover-open)')).waitFor({ state: 'attached' })
  await page.waitForTimeout(700)
  assert.ok(!(await tip.isVisible()))
  assert.match(await page.getByRole('checkbox', { name: 'HELO name' }).locator('xpath=..').textContent(), /greeting/)

  // What was shown at the right edge before does not make the next one narrow.
  await page.setViewportSize({ width: 390, height: 844 })
  const buttons = black.getByRole('button', { name: 'Import and export...' })
  await buttons.scrollIntoViewIfNeeded()
  const first = await shown(buttons)
  await page.mouse.move(5, 5)
  await tip.and(page.locator(':not(:popover-open)')).waitFor({ state: 'attached' })
  assert.ok(first.width > 150 && first.right <= 390, JSON.stringify(first))
  await page.setViewportSize({ width: 1440, height: 900 })
})

test('folded groups of the sidebar stay folded in another language', async () => {
  const nav = page.getByRole('navigation')
  const logs = nav.getByRole('button', { name: 'Logs' })
  const lists = nav.getByRole('button', { name: 'Lists' })
  for (const [group, unfolded] of [[logs, 'true'], [lists, 'true']]) {
    if ((await group.getAttribute('aria-expanded')) !== unfolded) await group.click()
  }
  await openPage(page, 'General', 'general')
  await lists.click()
  console.run('do', 'general', 'Combo1=german')
  await openNamed(page, 'strings')
  const state = name => nav.getByRole('button', { name, exact: true }).getAttribute('aria-expanded')
  await nav.getByRole('button', { name: 'Listen', exact: true }).waitFor()
  assert.equal(await state('Listen'), 'false')
  assert.equal(await state('Protokolle'), 'true')
})
