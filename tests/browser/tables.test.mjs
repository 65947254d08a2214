// Tables and links: a million rows, the keyboard, addresses that can be kept, and the page of all logs.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openPage, picture, withConsole } from './console.mjs'

let page

withConsole({ sample: true }, async started => {
  ;({ page } = started)
  await openPage(page, 'Tables', 'tables')
})

const grid = name => page.getByRole('grid', { name, exact: true })
const chosen = name => grid(name).locator('[aria-selected=true]')

test('a million rows are there at once, to their end', async () => {
  const table = grid('A million rows')
  await table.getByText('row 1000000', { exact: true }).waitFor()
  assert.equal(await table.getAttribute('aria-rowcount'), '1000001')
  assert.ok((await table.getByRole('row').count()) < 100)
  const begun = Date.now()
  await table.focus()
  await page.keyboard.press('End')
  await table.getByText('row 1', { exact: true }).waitFor()
  assert.ok(Date.now() - begun < 2000)
  await page.getByText('Chosen: 1', { exact: true }).waitFor()
  await page.keyboard.press('Shift+ArrowUp')
  await page.keyboard.press('Shift+ArrowUp')
  await page.getByText('Chosen: 3', { exact: true }).waitFor()
  await page.keyboard.press('Control+Home')
  await table.getByText('row 1000000', { exact: true }).waitFor()
  await page.keyboard.press('Shift+Space')
  await page.getByText('No more than 10,000 rows can be chosen at once').first().waitFor()
  await picture(page, 'tables')
})

test('rows that come first do not move those on view', async () => {
  const table = grid('A million rows')
  await page.keyboard.press('Escape')
  for (let i = 0; i < 3; ++i) await page.keyboard.press('PageDown')
  const top = () => table.evaluate(element => element.querySelector('.table-line.active')?.textContent)
  const before = await top()
  await page.getByRole('button', { name: 'Three more rows' }).click()
  await page.getByText('1,000,003 rows').waitFor()
  assert.equal(await top(), before)
})

test('several rows are chosen and taken away, and a filter says what is wrong', async () => {
  const table = grid('A million rows')
  await table.getByRole('row').nth(3).click()
  await table.getByRole('row').nth(5).click({ modifiers: ['Control'] })
  await page.getByText('Chosen: 2', { exact: true }).waitFor()
  await page.getByRole('button', { name: 'Take the chosen rows away' }).click()
  await page.getByText('1,000,001 rows').waitFor()
  assert.equal(await chosen('A million rows').count(), 0)
  await page.getByRole('textbox', { name: 'Filter', exact: true }).fill('?')
  await page.getByRole('alert').getByText('"?" at character 1').waitFor()
  await page.getByRole('textbox', { name: 'Filter', exact: true }).fill('123456')
  await table.getByText('row 123456', { exact: true }).waitFor()
})

test('short tables sort, show each kind as it is, and lead on', async () => {
  const table = grid('Mails')
  await table.getByRole('button', { name: 'Count' }).click()
  await page.waitForFunction(() => document.querySelector('.table-line .kind-number')?.textContent === '101')
  assert.equal(await table.getByRole('columnheader', { name: 'Count' }).getAttribute('aria-sort'), 'descending')
  await table.getByText('Rejected').waitFor()
  await table.locator('time').getByText(/2026/).first().waitFor()
  assert.equal(await table.locator('b').count(), 0)
  await table.getByText('Minutes').click()
  await page.getByText('Chosen: Minutes').waitFor()
  const link = table.getByRole('link', { name: '<b>Win</b> "now"' })
  assert.equal(await link.getAttribute('href'), '#/allcontrols/a%2Fb%20c')
  await page.getByRole('link', { name: 'Look up 198.51.100.7' }).click()
  await page.getByText('Every kind of control').waitFor()
  assert.match(page.url(), /#\/allcontrols\/198\.51\.100\.7$/)
  await page.goBack()
  await table.getByText('Minutes').waitFor()
})

test('columns are as wide as people make them, by mouse and keyboard', async () => {
  const table = grid('Mails')
  const widths = () => table.locator('.table-head .table-cell').evaluateAll(cells => cells.map(cell => cell.getBoundingClientRect().width))
  const lines = () =>
    table.locator('.table-line').evaluateAll(rows => rows.map(row => [row.getBoundingClientRect().top, row.getBoundingClientRect().height]))
  const sum = list => list.reduce((all, width) => all + width, 0)
  const about = (value, expected, what) => assert.ok(Math.abs(value - expected) < 1.5, `${what}: ${value}, not ${expected}`)
  const edge = name => table.getByRole('separator', { name: `Width of the column ${name}` })
  const before = await widths()
  const rows = await lines()

  const { x, y, width } = await edge('Verdict').boundingBox()
  await page.mouse.move(x + width / 2, y + 5)
  await page.mouse.down()
  await page.mouse.move(x + width / 2 + 30, y + 5, { steps: 3 })
  await page.mouse.up()
  const dragged = await widths()
  about(dragged[1], before[1] + 30, 'the column that was dragged')
  about(dragged[2], before[2] - 30, 'the one behind it')
  about(sum(dragged), sum(before), 'the table')
  for (const place of [0, 3, 4]) about(dragged[place], before[place], `column ${place}`)
  assert.deepEqual(await lines(), rows)
  // The cells stand below their heads.
  const cells = await table.locator('.table-line').first().locator('.table-cell').evaluateAll(list => list.map(cell => cell.getBoundingClientRect().width))
  cells.forEach((cell, place) => about(cell, dragged[place], `cell ${place}`))

  await edge('Time').focus()
  await page.keyboard.press('ArrowDown')
  await page.keyboard.press('ArrowLeft')
  await page.keyboard.press('Shift+ArrowLeft')
  const told = now => table.locator(`[role=separator][aria-label$=" Verdict"][aria-valuenow="${Math.round(now)}"]`).waitFor()
  await told(dragged[1] - 60)
  about((await widths())[1], dragged[1] - 60, 'by the arrow keys')
  await page.keyboard.press('Home')
  await told(48)
  about((await widths())[1], 48, 'the least width')
  await picture(page, 'columns')

  // As wide as it needs to be.
  await edge('Verdict').dblclick()
  await table.locator('[role=separator][aria-label$=" Verdict"]:not([aria-valuenow="48"])').waitFor()
  const fitted = await table.locator('.verdict').evaluateAll(list => list.every(badge => badge.scrollWidth <= badge.parentElement.clientWidth))
  assert.ok(fitted && (await widths())[1] > 60 && (await widths())[1] < 200, String(await widths()))

  // Remembered for this table alone, on this device.
  const kept = await widths()
  await page.reload()
  await table.getByText('Minutes').waitFor()
  ;(await widths()).forEach((value, place) => about(value, kept[place], `column ${place} after a reload`))
  assert.equal(await page.evaluate(() => Object.keys(localStorage).filter(key => key.startsWith('columns ')).join()), 'columns tables Table1')
  // A narrower window squeezes the texts, and nothing is cut off at its end.
  await page.setViewportSize({ width: 1000, height: 900 })
  await page.waitForTimeout(200)
  const narrow = await table.locator('.table-head').evaluate(head => [head.scrollWidth, head.clientWidth])
  assert.ok(narrow[0] <= narrow[1], String(narrow))
  await page.setViewportSize({ width: 1440, height: 900 })
})

test('an address with a query can be kept', async () => {
  await page.evaluate(() => (location.hash = '#/tables/4711'))
  await page.getByText('Opened with 4711').waitFor()
  await page.reload()
  await page.getByText('Opened with 4711').waitFor()
  await page.evaluate(() => (location.hash = '#/tables/12345%2F'))
  await page.getByText('Opened with 12345/').waitFor()
  await page.goBack()
  await page.getByText('Opened with 4711').waitFor()
})

test('all logs are on the page of messages', async () => {
  await openPage(page, 'Messages', 'messages')
  const table = grid('Messages')
  await table.locator('.table-line time').first().waitFor()
  await picture(page, 'messages')
  // Whatever columns are left out, each cell is in its own.
  for (const width of [1440, 1150, 900, 390]) {
    await page.setViewportSize({ width, height: 900 })
    await page.waitForTimeout(200)
    const addresses = await table.locator('.table-line .kind-address').allTextContents()
    assert.ok(addresses.length > 5 && addresses.every(text => /^[\da-f.:]+$/.test(text)), `${width}: ${addresses}`)
  }
  await page.setViewportSize({ width: 1440, height: 900 })
  await page.getByRole('textbox', { name: 'Filter', exact: true }).fill('reason:rbl')
  await page.waitForFunction(() => /rows/.test(document.querySelector('.table-field .count')?.textContent ?? ''))
  await table.getByText(/RBL/).first().click()
  await grid('Chosen row').getByText(/RBL/).waitFor()
  await page.getByRole('textbox', { name: 'Filter', exact: true }).fill('foo:bar')
  await page.getByRole('alert').getByText('"foo:" is no field (character 1)').waitFor()
  await page.getByRole('textbox', { name: 'Filter', exact: true }).fill('')
})
